// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a fuzzer asks of the code besides not to crash.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace tarvik::fuzz {

/// Ends the process, which the fuzzer takes for a finding, unless `holds`.
inline void demand(bool holds, const std::string& what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Not as it should be: %s\n", what.c_str());
    std::abort();
}

}  // namespace tarvik::fuzz
