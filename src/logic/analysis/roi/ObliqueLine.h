// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels that an oblique line crosses, and how long it stays in each.
#pragma once

#include <vector>

namespace roi {

/// A value with a sort key and a position.
template <class Coordinate>
struct PixVal {
    double key;
    Coordinate x;
    Coordinate y;
    bool operator<(const PixVal& other) const { return key < other.key; }
};

/// A straight line that is neither vertical nor horizontal. The crossings with column boundaries
/// and row boundaries are on the line through the anchor; first and last point are taken as they
/// are. Column and row numbers are those of the pixels in which the line begins and ends.
struct ObliqueLine {
    PixVal<double> first;
    PixVal<double> last;
    double anchorX;
    double anchorY;
    double slope;
    int beginColumn;
    int endColumn;
    int beginRow;
    int endRow;
};

/// One pixel under a line and the length of the line in it, in pixels.
struct LinePixel {
    int x;
    int y;
    double length;
};

/// The pixels from the first point to the last.
std::vector<LinePixel> crossedPixels(const ObliqueLine& line);

}  // namespace roi
