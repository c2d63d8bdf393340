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

/// The sums over a ring's good pixels. Pixels at the rims count by their part in the ring.
struct RingSums {
    RegionSums pixels;
    /// The point of radius r is points[r - firstRadius], for the radii of the ring that the image
    /// can hold.
    std::vector<CurvePoint> points;
    int firstRadius = 0;
};

/// Sums the ring on all cores; the result does not depend on their number. No geometry is
/// cached: computing it for each pixel is cheaper than reading it from a table. Memory: a few
/// megabytes.
/// @param stop  polled every few rows; after a stop the sum is unusable
RingSums sumRing(const Ring& ring, const PixelSource& pixels, const std::stop_token& stop);

}  // namespace roi
