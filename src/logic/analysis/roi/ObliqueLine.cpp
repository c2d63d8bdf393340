// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Crossings of a line with the pixel grid.
#include "logic/analysis/roi/ObliqueLine.h"

#include <algorithm>
#include <cmath>

namespace roi {

namespace {

constexpr double SamePoint = 0.0001;  // points nearer than this in x and y are one crossing

/// Calls visit(boundary) for each pixel boundary between two pixels, in drawing direction.
template <class Visit>
void forEachBoundary(int begin, int end, Visit visit)
{
    for (int i = begin + 1; i <= end; ++i)
        visit(i);
    for (int i = begin; i >= end + 1; --i)
        visit(i);
}

std::vector<PixVal<double>> crossings(const ObliqueLine& line)
{
    std::vector<PixVal<double>> points{line.first};
    forEachBoundary(line.beginColumn, line.endColumn, [&](int i) {
        const double x = i;
        points.push_back({x, x, (x - line.anchorX) * line.slope + line.anchorY});
    });
    forEachBoundary(line.beginRow, line.endRow, [&](int j) {
        const double x = (j - line.anchorY) / line.slope + line.anchorX;
        points.push_back({x, x, double(j)});
    });
    points.push_back(line.last);
    return points;
}

}  // namespace

std::vector<LinePixel> crossedPixels(const ObliqueLine& line)
{
    std::vector<PixVal<double>> points = crossings(line);
    if (line.last.x > line.first.x)
        std::stable_sort(points.begin(), points.end());
    else
        std::stable_sort(points.begin(), points.end(),
                         [](const auto& left, const auto& right) { return right < left; });
    const auto same = [](const auto& kept, const auto& next) {
        return std::abs(kept.x - next.x) < SamePoint && std::abs(kept.y - next.y) < SamePoint;
    };
    points.erase(std::unique(points.begin(), points.end(), same), points.end());

    const double stretch = std::sqrt(line.slope * line.slope + 1);
    std::vector<LinePixel> pixels;
    pixels.reserve(points.size());
    for (std::size_t i = 1; i < points.size(); ++i) {
        const auto& p = points[i - 1];
        const auto& q = points[i];
        pixels.push_back({static_cast<int>(std::floor((p.x + q.x) / 2)),
                          static_cast<int>(std::floor((p.y + q.y) / 2)),
                          std::abs(q.x - p.x) * stretch});
    }
    return pixels;
}

}  // namespace roi
