// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What stands for the pixels that one pixel of the screen covers.
#pragma once

enum class Minification {
    Nearest,  ///< the one under the centre; where views have no shaders, the average
    Largest,  ///< the largest good one of their block, so that no spot is lost
};
