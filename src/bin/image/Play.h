// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "play": how fast a series runs through a view.
#pragma once

#include "bin/image/Arguments.h"

#include <iosfwd>

namespace tarvik::tool {

/// Drives the model of a view without a window through a series, each image as soon as the one
/// before has been shown, and reports how long each part took.
class Play {
public:
    /// @throws MException when the first image can't be read, or there is no preloader to start
    static void run(const Arguments& arguments, std::ostream& out);
};

}  // namespace tarvik::tool
