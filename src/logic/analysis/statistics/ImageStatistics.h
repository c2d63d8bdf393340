// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers over a whole image.
#pragma once

#include "logic/analysis/statistics/IntegratedHistogram.h"

/// Numbers over all pixels of one image under its mask. Filled once by ComputeStatistics
/// on a loader's thread, then shared read-only by pointer: because of the histogram it can't be
/// copied or moved. A good pixel is one that the mask does not exclude.
struct ImageStatistics {
    /// Smallest and largest good pixel; the first pixel of the image takes part in any case.
    double minimum = 0;
    double maximum = 0;
    /// Mean and standard deviation of the good pixels; NaN if there isn't one.
    double mean = 0;
    double sigma = 0;
    /// The default contrast: intensities at the top of the linear part and at the bottom of the
    /// colour table.
    double foreground = 0;
    double background = 0;
    /// Good pixels of value 0.
    unsigned int zeros = 0;
    /// Pixels that mask bits 1 to 4 exclude.
    unsigned int defective = 0;
    /// Good pixels at or above the saturation value of the header; 0 without such a value.
    unsigned int saturated = 0;
    /// Sum of the good pixels.
    double sum = 0;
    /// True if the minimum is below -2. The values -1 and -2 alone are marks, not data.
    bool hasNegatives = false;
    /// Number of good pixels at or below any value.
    IntegratedHistogram histogram;
};
