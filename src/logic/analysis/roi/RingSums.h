// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// All sums of a ring around a real-valued centre.
#pragma once

#include "logic/analysis/roi/PixelSource.h"
#include "logic/analysis/roi/RingGeometry.h"

#include <stop_token>
#include <vector>

namespace roi {

/// What a ring's good pixels add up to. Pixels at the rims count by their part in the ring.
struct RingSums {
    RegionSums pixels;
    /// The point of radius r is points[r - firstRadius], for the radii of the ring that the image
    /// can hold.
    std::vector<CurvePoint> points;
    int firstRadius = 0;
};

/// Goes over the ring on all cores; the result does not depend on their number. No geometry is
/// kept: what is computed for each pixel costs less than to read it from a table. Memory: a few
/// megabytes.
/// @param stop  asked for each few rows; a sum that was stopped is of no use
RingSums sumRing(const Ring& ring, const PixelSource& pixels, const std::stop_token& stop);

}  // namespace roi
