// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command line of tarvik-demo-data.
#pragma once

#include "demo/DemoSet.h"

#include <string>
#include <vector>

namespace tarvik::demo {

struct DemoOptions {
    bool help = false;
    std::string directory;
    std::uint64_t seed = 1;
    std::vector<SeriesPlan> series;
};

extern const char* const Usage;

/// Reads the arguments after the program's name.
/// @throws MBadParameterException with what is wrong with them
DemoOptions parseOptions(const std::vector<std::string>& arguments);

}  // namespace tarvik::demo
