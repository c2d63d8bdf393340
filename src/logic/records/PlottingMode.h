// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How a view plots its image.
#pragma once

enum class PlottingMode : int {
    Flat = 0,             ///< the image itself
    ThreeDimensional = 1  ///< a height map
};
