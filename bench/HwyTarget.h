// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// TARVIK_HWY_TARGET=AVX2 (or SSE4, SSSE3, AVX3) holds the vector code of a benchmark to that
// instruction set.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <hwy/highway.h>

namespace tarvik::bench {

inline void holdToTarget()
{
    const char* wanted = std::getenv("TARVIK_HWY_TARGET");
    if (!wanted || !*wanted)
        return;
    for (const std::int64_t target : {HWY_AVX3, HWY_AVX2, HWY_SSE4, HWY_SSSE3}) {
        if (std::strcmp(hwy::TargetName(target), wanted) != 0)
            continue;
        hwy::DisableTargets(target - 1);  // lower bits are better targets
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        return;
    }
    std::fprintf(stderr, "unknown TARVIK_HWY_TARGET: %s\n", wanted);
    std::exit(2);
}

}  // namespace tarvik::bench
