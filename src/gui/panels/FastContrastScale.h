// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The scale of the small contrast control.
#pragma once

namespace panels {

/// A logarithmic scale of fixed span, in units, from the background on.
struct FastContrastScale {
    double background = 0;
    int width = 1;    ///< in pixels
    double unit = 1;  ///< see intensityUnit()

    double valueAt(int pixel) const;
    /// Nearest pixel of the scale.
    int pixelOf(double value) const;
};

}  // namespace panels
