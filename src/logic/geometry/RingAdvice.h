// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which resolution rings to draw over an image.
#pragma once

#include "logic/geometry/Geometry.h"

#include <QString>

#include <vector>

namespace geometry {

/// Rings around the beam centre, spread evenly over the detector and moved to round resolutions.
struct RingAdvice {
    /// More than there are pixels from one side of a detector to the other make no sense.
    static constexpr int mostRings = 100000;

    /// Radii in pixels of mean size, from the inner to the outer ring.
    std::vector<double> radii;
    /// The resolutions in Angstrom, with enough digits to distinguish neighbouring rings.
    std::vector<QString> labels;
};

/// Advice for n rings, at most mostRings, on an image of width x height pixels; empty unless
/// resolutionDefined(). A ring whose rounded resolution no point of the detector's plane can have
/// is left out.
RingAdvice adviseRings(const Header& header, int width, int height, int n);

}  // namespace geometry
