// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Plain computations of the regions of interest, slow on purpose, to compare the product with.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

namespace reference {

/// Image and mask, read pixel by pixel with the fallbacks of each computation.
struct Pixels {
    const morvend::imglib::MImage& image;
    const morvend::imglib::MImage& mask;
    double value(int x, int y) const { return image.pixel<double>(x, y, 0.0); }
    double maskValue(int x, int y, double fallback) const
    {
        return mask.pixel<double>(x, y, fallback);
    }
    bool good(int x, int y) const;
};

RoiStatistics compute(const Pixels& pixels, const StatisticsData& selection);
double coveredArea(int x, int y, int r, int cx, int cy);

}  // namespace reference
