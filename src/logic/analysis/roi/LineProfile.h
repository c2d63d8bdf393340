// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sampling along a line: curve and sums.
#pragma once

#include "logic/analysis/roi/ObliqueLine.h"
#include "logic/analysis/roi/PixelReader.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <vector>

namespace roi {

using Curve = std::vector<std::vector<double>>;

/// One pixel under a line, read from image and mask.
struct LineSample {
    int x;
    int y;
    double length;
    double value;  // 0 outside the image
    double mask;   // the third value of the curve
    bool good;
};

/// Reads the pixels of a vertical or horizontal line; outside the image the mask is 1.
template <class L, class R>
std::vector<LineSample> readStraight(const PixelReader<L, R>& reader,
                                     const std::vector<LinePixel>& pixels)
{
    std::vector<LineSample> samples;
    samples.reserve(pixels.size());
    for (const auto& [x, y, length] : pixels)
        samples.push_back({x, y, length, static_cast<double>(reader.value(x, y)),
                           static_cast<double>(reader.mask(x, y, R(1))), reader.good(x, y)});
    return samples;
}

/// Reads the pixels of an oblique line; the mask is taken as int, and is -1 outside the image.
template <class L, class R>
std::vector<LineSample> readOblique(const PixelReader<L, R>& reader,
                                    const std::vector<LinePixel>& pixels)
{
    using morvend::datatypes::convertPixel;
    std::vector<LineSample> samples;
    samples.reserve(pixels.size());
    for (const auto& [x, y, length] : pixels) {
        const int mask = reader.inside(x, y) ? convertPixel<int>(reader.mask(x, y, R(0))) : -1;
        samples.push_back({x, y, length, static_cast<double>(reader.value(x, y)),
                           static_cast<double>(mask), reader.good(x, y)});
    }
    return samples;
}

/// Pixels of a vertical or horizontal line, both ends included; one of the steps is 0, the other 1
/// or -1.
std::vector<LinePixel> straightPixels(int beginX, int beginY, int endX, int endY);
/// True for a vertical or horizontal line.
bool straight(const StatisticsData& line);
/// The pixels under a line, from its start to its end, also those outside the image. Those of a
/// straight line have length 1, also at both ends.
std::vector<LinePixel> pixelsUnder(const StatisticsData& line);

/// The curve over pixels of length 1, of which the first and the last count half.
Curve straightCurve(const std::vector<LineSample>& samples, double length);
/// Two points for each sample, at the ends of its stretch.
Curve obliqueCurve(const std::vector<LineSample>& samples);

/// Adds integral, mean, sigma and extremes of a vertical or horizontal line.
void sumStraight(RoiStatistics& result, const std::vector<LineSample>& samples);
/// The same for an oblique line.
void sumOblique(RoiStatistics& result, const std::vector<LineSample>& samples);

}  // namespace roi
