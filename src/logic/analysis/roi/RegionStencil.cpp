// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/analysis/roi/RegionStencil.h"

#include "logic/analysis/roi/CoveredArea.h"
#include "logic/analysis/roi/LineProfile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

/// The rows of a column that a circle can reach, last one excluded; clipped to the image.
struct Rows {
    int begin = 0;
    int end = 0;
};

/// What the circle of a region reaches: the rows of each column from the first one on.
struct Reach {
    int firstColumn = 0;
    std::vector<Rows> columns;

    template <class Visit>
    void forEachPixel(int width, Visit&& visit) const
    {
        int begin = std::numeric_limits<int>::max();
        int end = 0;
        for (const Rows& rows : columns) {
            begin = std::min(begin, rows.begin);
            end = std::max(end, rows.end);
        }
        for (int y = begin; y < end; ++y)
            for (std::size_t i = 0; i < columns.size(); ++i)
                if (y >= columns[i].begin && y < columns[i].end) {
                    const int x = firstColumn + static_cast<int>(i);
                    visit(x, y,
                          static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                              static_cast<std::size_t>(x));
                }
    }
};

/// Where a pixel is by the distance of its centre alone, which decides for nearly all pixels. Half
/// the diagonal of a pixel, rounded up, is left to the exact rules on both sides of a circle.
class Distance {
public:
    Distance(double dx, double dy)
        : _squared(dx * dx + dy * dy)
    {}
    bool isInside(int radius) const
    {
        return radius >= 1 && _squared < (radius - HalfDiagonal) * (radius - HalfDiagonal);
    }
    bool isOutside(int radius) const
    {
        return _squared > (radius + HalfDiagonal) * (radius + HalfDiagonal);
    }

private:
    static constexpr double HalfDiagonal = 0.7072;
    double _squared;
};

/// @param rowsOf  first and last row of a column, which may be outside the image
template <class RowsOf>
Reach reachOf(int left, int right, int width, int height, RowsOf&& rowsOf)
{
    Reach reach{std::max(left, 0), {}};
    for (int x = reach.firstColumn; x <= std::min(right, width - 1); ++x) {
        const auto [first, last] = rowsOf(x);
        reach.columns.push_back({std::max(first, 0), std::min(last, height - 1) + 1});
    }
    return reach;
}

}  // namespace

RegionStencil::RegionStencil(const StatisticsData& region, int width, int height)
    : _width(width)
    , _height(height)
{
    if (region.roiType == StatisticsData::Line)
        _addLine(region);
    else if (region.roiType == StatisticsData::Circle)
        _addCircle(region);
    else
        _addRing(region);
}

void RegionStencil::_addLine(const StatisticsData& region)
{
    if (region.beginX == region.endX && region.beginY == region.endY)
        return;
    std::vector<roi::LinePixel> pixels = roi::pixelsUnder(region);
    if (roi::straight(region))
        pixels.front().length = pixels.back().length = 0.5;
    for (const auto& [x, y, length] : pixels)
        if (x >= 0 && x < _width && y >= 0 && y < _height)
            _area.parts.push_back({static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) +
                                       static_cast<std::size_t>(x),
                                   length});
}

// The pixels that are visited are those that the computations of single images visit, which leave
// out some that the circles only touch.

void RegionStencil::_addCircle(const StatisticsData& region)
{
    const int radius = region.radius;
    const int cx = region.circleX;
    const int cy = region.circleY;
    if (radius == 0)
        return;
    const int outer = static_cast<int>(std::ceil(1.2 * radius));
    const auto rowsOf = [&](int x) {
        const double d = (x < cx ? x - cx + 1 : x - cx) - 0.5;
        const double top = std::sqrt(double(outer) * outer - d * d) + cy + 0.5;
        const int last = static_cast<int>(top);
        return std::pair(2 * cy - last, last);
    };
    reachOf(cx - outer, cx + outer, _width, _height, rowsOf)
        .forEachPixel(_width, [&](int x, int y, std::size_t pixel) {
            const Distance distance(double(x) - cx, double(y) - cy);
            if (distance.isInside(radius))
                return _area.add(pixel, 1);
            if (distance.isOutside(radius) && distance.isInside(outer))
                return _background.add(pixel, 1);
            const double inDisc = coveredArea(x, y, radius, cx, cy);
            _area.add(pixel, inDisc);
            if (inDisc < 1)
                _background.add(pixel, coveredArea(x, y, outer, cx, cy) - inDisc);
        });
}

void RegionStencil::_addRing(const StatisticsData& region)
{
    const double cx = region.powderX;
    const double cy = region.powderY;
    const int inner = region.innerRadius;
    const int outer = region.outerRadius;
    const auto rowsOf = [&](int x) {
        const double d = (x < int(cx) ? x + 1 : x) - cx;
        const double chord = double(outer) * outer - d * d;
        const int last = chord < 0 ? -1 : static_cast<int>(std::sqrt(chord) + cy);
        const int half = last - static_cast<int>(cy);
        return chord < 0 || half < 0 ? std::pair(0, -1) : std::pair(last - 2 * half, last);
    };
    reachOf(static_cast<int>(cx) - outer, static_cast<int>(cx) + outer, _width, _height, rowsOf)
        .forEachPixel(_width, [&](int x, int y, std::size_t pixel) {
            const Distance distance(x + 0.5 - cx, y + 0.5 - cy);
            if (distance.isInside(inner))
                return;
            if (distance.isOutside(inner) && distance.isInside(outer))
                return _area.add(pixel, 1);
            const double hole = coveredArea(x, y, inner, cx, cy);
            if (hole < 1)
                _area.add(pixel, coveredArea(x, y, outer, cx, cy) - hole);
        });
}
