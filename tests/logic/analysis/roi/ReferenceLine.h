// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Walks over pixels and the line of the reference, with its search for reflections.
#pragma once

#include "tests/logic/analysis/roi/ReferenceRoi.h"

#include <algorithm>
#include <cmath>

namespace reference {

using Point = std::pair<double, double>;

/// Rounding alone makes a radicand slightly negative, wrapped squares much.
inline double root(double radicand, double mean)
{
    return radicand < 0 && radicand >= -1e-9 * mean * mean ? 0 : std::sqrt(radicand);
}

struct Sums {
    double sum = 0, squares = 0, weight = 0, minimum = 0, maximum = 0;
    bool any = false;
    void add(double v, double w)
    {
        sum += v * w;
        squares += v * v * w;
        weight += w;
        minimum = any ? std::min(minimum, v) : v;
        maximum = any ? std::max(maximum, v) : v;
        any = true;
    }
    double mean() const { return weight != 0 ? sum / weight : 0; }
    double sigma() const
    {
        return weight != 0 ? root(squares / weight - mean() * mean(), mean()) : 0;
    }
    void store(RoiStatistics& result) const
    {
        result.integral = sum;
        result.minimum = minimum;
        result.maximum = maximum;
        result.mean = mean();
        result.sigma = sigma();
    }
};

/// The curve over n + 1 pixels in a row or column. @param pixelAt  place of the k-th one
template <class PixelAt>
void walkStraight(RoiStatistics& result, const Pixels& p, int n, PixelAt&& pixelAt)
{
    const auto push = [&](double way, int k) {
        const auto [x, y] = pixelAt(k);
        result.curve.push_back({way, p.value(x, y), p.maskValue(x, y, 1)});
    };
    push(0, 0);
    for (int k = 1; k <= n; ++k) {
        push(k - 0.5, k - 1);
        push(k - 0.5, k);
    }
    push(result.length, n);
}

/// A way with its ends, a point that all crossings are counted from, and the pixels of both ends.
struct Way {
    Point first, last, origin;
    std::pair<int, int> begin, end;
};

/// Length and curve of an oblique way. @param each  takes each pixel with the length within it
template <class Each>
void walkOblique(RoiStatistics& result, const Pixels& p, const Way& way, Each&& each)
{
    const auto& [first, last, origin, begin, end] = way;
    const double slope = (last.second - first.second) / (last.first - first.first);
    const double stretch = std::sqrt(slope * slope + 1);
    result.length = std::abs(last.first - first.first) * stretch;
    std::vector<Point> points{first};
    for (int i = std::min(begin.first, end.first) + 1; i <= std::max(begin.first, end.first); ++i)
        points.emplace_back(i, (i - origin.first) * slope + origin.second);
    for (int j = std::min(begin.second, end.second) + 1; j <= std::max(begin.second, end.second);
         ++j)
        points.emplace_back((j - origin.second) / slope + origin.first, j);
    points.push_back(last);
    const bool forward = last.first > first.first;
    std::stable_sort(points.begin(), points.end(), [&](const Point& l, const Point& r) {
        return forward ? l.first < r.first : l.first > r.first;
    });
    Point before = points[0];
    double distance = 0;
    for (const Point& point : points) {
        if (std::abs(point.first - before.first) < 0.0001 &&
            std::abs(point.second - before.second) < 0.0001)
            continue;
        const int x = int(std::floor((before.first + point.first) / 2));
        const int y = int(std::floor((before.second + point.second) / 2));
        const double segment = std::abs(point.first - before.first) * stretch;
        const double mask = p.mask.pixel<int>(x, y, -1);
        result.curve.push_back({distance, p.value(x, y), mask});
        result.curve.push_back({distance += segment, p.value(x, y), mask});
        each(x, y, segment);
        before = point;
    }
}

void line(RoiStatistics& result, const Pixels& p, const StatisticsData& s);

}  // namespace reference
