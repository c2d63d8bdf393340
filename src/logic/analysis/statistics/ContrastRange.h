// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Contrasts that span a part of the pixels.
#pragma once

#include "logic/analysis/statistics/IntegratedHistogram.h"

#include <functional>
#include <optional>

/// The pixels that a contrast spans. A value.
struct ContrastRange {
    /// Parts of all pixels in ascending order, from 0 to 1.
    double low = 0.001;
    double high = 0.999;
    /// Instead three sigma around the mean, both without the outermost thousandth at each end, in
    /// which hot pixels are.
    bool sigma = false;

    bool operator==(const ContrastRange&) const = default;
};

struct ContrastLevels {
    double background = 0;
    double foreground = 0;

    bool operator==(const ContrastLevels&) const = default;
};

/// Pixels by their ranks in ascending order.
struct RankedPixels {
    unsigned int count = 0;
    bool floating = false;
    std::function<double(unsigned int rank)> valueAt;  ///< ranks from 0 to below the count
};

/// The levels that span a range of pixels: whole for integer pixels, and the foreground always
/// above the background. Empty without any pixel. Thread: any. Cost: no pass over pixels.
std::optional<ContrastLevels> contrastLevels(const RankedPixels& pixels,
                                             const ContrastRange& range);

/// The same of the pixels in a histogram. Values that are marks (imagelib/image/GapValues.h) are
/// no pixels here, even where the mask forgets them.
std::optional<ContrastLevels> contrastLevels(const IntegratedHistogram& histogram,
                                             const ContrastRange& range);
