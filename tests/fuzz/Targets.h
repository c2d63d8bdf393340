// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The instruction sets of this processor, one after the other.
#pragma once

#include <hwy/targets.h>

#include <cstdint>

namespace tarvik::fuzz {

/// Calls run() with each of Highway's targets that this processor has, the best one last.
template <class Run>
void onEveryTarget(Run&& run)
{
    static const std::int64_t all = hwy::SupportedTargets();
    const auto choose = [](std::int64_t targets) {
        hwy::SetSupportedTargetsForTest(targets);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    };
    // Better targets have lower bits.
    for (std::int64_t bit = std::int64_t(1) << 62; bit != 0; bit >>= 1)
        if (all & bit) {
            choose(bit);
            run();
        }
    choose(0);
}

}  // namespace tarvik::fuzz
