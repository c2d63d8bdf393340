// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The scale of the small contrast control.
#pragma once

namespace panels {

/// A logarithmic scale of fixed span from the background on.
struct FastContrastScale {
    double background = 0;
    int width = 1;  ///< in pixels

    double valueAt(int pixel) const;
    /// Nearest pixel of the scale.
    int pixelOf(double value) const;
};

}  // namespace panels
