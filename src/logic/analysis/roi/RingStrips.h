// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How circles of integer radii cross strips of pixels: the vector loops of the powder plot.
#pragma once

#include <cstddef>

namespace roi {

/// A pixel as a number, 0 where it is excluded, and 1 where it is good, else 0.
struct Sample {
    double value;
    double good;
};

/// Sums over the arcs of one radius: pixel value times length, and length.
struct CurvePoint {
    double value = 0;
    double length = 0;
};

/// A few neighbouring strips of pixels that lead away from a centre: parts of rows to the left or
/// right of it, or of columns above or below it. All distances are in pixels.
struct RingTile {
    static constexpr int MostStrips = 16;
    static constexpr int MostLength = 256;
    /// Samples of a strip: an empty one, the pixels, and empty ones to the end.
    static constexpr std::size_t Stride = MostLength + 4;

    int strips;
    int length;                    // pixels of each strip
    double centre;                 // coordinate along the strips
    double first;                  // the border before the first pixels
    double direction;              // of the coordinate from there on, 1 or -1
    double edges[MostStrips + 1];  // distances of the centre from the borders between strips
    /// Radii that cross the pixels of interest of a strip; none if the first is above the last.
    /// There each circle crosses a strip within less than one pixel.
    int lowest[MostStrips];
    int highest[MostStrips];
};

/// Adds all crossings of a tile's pixels to the points of the curve; the point of radius r is
/// points[r - firstRadius]. Each length is what circleSection() gives, bit for bit.
/// @param samples  Stride for each strip
void addSections(const RingTile& tile, const Sample* samples, CurvePoint* points, int firstRadius);

/// Sums that do not depend on the width of vectors.
struct SampleSums {
    static constexpr std::size_t Lanes = 8;
    double sums[Lanes] = {};     // values in even lanes, numbers of good samples in odd ones
    double squares[Lanes] = {};  // likewise
};

/// Adds samples; their number is a multiple of 4.
void addSamples(const Sample* samples, std::size_t count, SampleSums& sums);

}  // namespace roi
