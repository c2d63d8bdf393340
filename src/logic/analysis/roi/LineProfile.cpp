// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Curves and sums of lines.
#include "logic/analysis/roi/LineProfile.h"

#include "logic/analysis/roi/RegionSums.h"

namespace roi {

namespace {

int sign(int value) { return (value > 0) - (value < 0); }

ObliqueLine obliqueLine(const StatisticsData& line)
{
    const double dx = double(line.endX) - line.beginX;
    const double dy = double(line.endY) - line.beginY;
    // Unlike the anchor of the crossings, the end points have no half pixel added to y.
    const PixVal<double> first{line.beginX + 0.5, line.beginX + 0.5, double(line.beginY)};
    const PixVal<double> last{line.endX + 0.5, line.endX + 0.5, double(line.endY)};
    return {first,       last,      line.beginX + 0.5, line.beginY + 0.5, dy / dx,
            line.beginX, line.endX, line.beginY,       line.endY};
}

}  // namespace

std::vector<LinePixel> straightPixels(int beginX, int beginY, int endX, int endY)
{
    const int stepX = sign(endX - beginX);
    const int stepY = sign(endY - beginY);
    const int steps = std::abs(endX - beginX) + std::abs(endY - beginY);
    std::vector<LinePixel> pixels;
    pixels.reserve(static_cast<std::size_t>(steps) + 1);
    for (int i = 0; i <= steps; ++i)
        pixels.push_back({beginX + i * stepX, beginY + i * stepY, 1.0});
    return pixels;
}

bool straight(const StatisticsData& line)
{
    return line.beginX == line.endX || line.beginY == line.endY;
}

std::vector<LinePixel> pixelsUnder(const StatisticsData& line)
{
    return straight(line) ? straightPixels(line.beginX, line.beginY, line.endX, line.endY)
                          : crossedPixels(obliqueLine(line));
}

Curve straightCurve(const std::vector<LineSample>& samples, double length)
{
    Curve curve;
    curve.reserve(2 * samples.size());
    curve.push_back({0.0, samples.front().value, samples.front().mask});
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const double boundary = static_cast<double>(i) - 0.5;
        curve.push_back({boundary, samples[i - 1].value, samples[i - 1].mask});
        curve.push_back({boundary, samples[i].value, samples[i].mask});
    }
    curve.push_back({length, samples.back().value, samples.back().mask});
    return curve;
}

Curve obliqueCurve(const std::vector<LineSample>& samples)
{
    Curve curve;
    curve.reserve(2 * samples.size());
    double distance = 0;
    for (const LineSample& sample : samples) {
        curve.push_back({distance, sample.value, sample.mask});
        distance += sample.length;
        curve.push_back({distance, sample.value, sample.mask});
    }
    return curve;
}

void sumStraight(RoiStatistics& result, const std::vector<LineSample>& samples)
{
    RegionSums sums;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const bool atEnd = i == 0 || i + 1 == samples.size();
        if (samples[i].good)
            sums.add(samples[i].value, atEnd ? 0.5 : 1.0);  // as in the trapezoid rule
    }
    sums.store(result);
}

void sumOblique(RoiStatistics& result, const std::vector<LineSample>& samples)
{
    RegionSums sums;
    for (const LineSample& sample : samples)
        if (sample.good)
            sums.add(sample.value, sample.length);
    sums.store(result);
}

}  // namespace roi
