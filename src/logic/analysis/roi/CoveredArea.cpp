// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Covered areas and sections by the corners of a pixel.
#include "logic/analysis/roi/CoveredArea.h"

#include "logic/analysis/roi/ObliqueLine.h"
#include "logic/support/Assert.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace {

using Corner = roi::PixVal<int>;  // key: squared distance from the centre
using Corners = std::array<Corner, 4>;

/// The corners of a pixel, nearest first.
Corners cornersByDistance(int x, int y, double cx, double cy)
{
    const double left = x - cx;
    const double top = y - cy;
    const double right = x + 1 - cx;
    const double bottom = y + 1 - cy;
    Corners corners{{{left * left + top * top, x, y},
                     {right * right + top * top, x + 1, y},
                     {right * right + bottom * bottom, x + 1, y + 1},
                     {left * left + bottom * bottom, x, y + 1}}};
    const auto order = [&](std::size_t i, std::size_t j) {
        if (corners[j] < corners[i])
            std::swap(corners[i], corners[j]);
    };
    order(0, 1);
    order(2, 3);
    order(0, 2);
    order(1, 3);
    order(1, 2);
    return corners;
}

int cornersInside(const Corners& corners, double r2)
{
    int inside = 0;
    for (const Corner& corner : corners)
        inside += corner.key <= r2;
    return inside;
}

/// A corner as seen from the centre, and where the circle of squared radius r2 cuts its two sides.
struct Cut {
    Cut(const Corner& corner, double cx, double cy, double r2)
        : a(std::abs(corner.x - cx))
        , b(std::abs(corner.y - cy))
        , alongX(std::sqrt(r2 - (corner.y - cy) * (corner.y - cy)))
        , alongY(std::sqrt(r2 - (corner.x - cx) * (corner.x - cx)))
    {}
    double a;
    double b;
    double alongX;  // |x| of the circle at the corner's y
    double alongY;  // |y| of the circle at the corner's x
};

double sectionLength(const Corners& corners, int radius, double cx, double cy)
{
    if (radius <= 0)
        return 0;
    const double r2 = double(radius) * radius;
    const int inside = cornersInside(corners, r2);
    switch (inside) {
    case 0:
    case 4:
        return 0;
    case 1:
    case 3: {
        const Cut cut(corners[inside == 1 ? 0 : 3], cx, cy, r2);
        const double e = cut.alongX - cut.a;
        const double f = cut.alongY - cut.b;
        return std::sqrt(e * e + f * f);
    }
    case 2: {
        const Cut cut0(corners[0], cx, cy, r2);
        const Cut cut1(corners[1], cx, cy, r2);
        const double e = corners[0].x != corners[1].x ? cut0.alongY - cut0.b + cut1.b - cut1.alongY
                                                      : cut0.alongX - cut1.alongX;
        return std::sqrt(e * e + 1);
    }
    default:
        assert(!"a pixel has four corners");
        return 0;
    }
}

}  // namespace

double coveredArea(int x, int y, int r, int cx, int cy)
{
    // Doubled coordinates, mirrored into the first quadrant.
    const std::int64_t mirroredX = x < cx ? 2 * std::int64_t(cx) - x : x;
    const std::int64_t mirroredY = y < cy ? 2 * std::int64_t(cy) - y : y;
    const std::int64_t a = 2 * (mirroredX - cx);
    const std::int64_t b = 2 * (mirroredY - cy);
    const std::int64_t r2 = 4 * std::int64_t(r) * r;
    if (a == 0 || b == 0) {
        const std::int64_t other = a == 0 ? b : a;
        if (other - 1 >= 2 * std::int64_t(r))
            return 0;
        return other + 1 > 2 * std::int64_t(r) ? 0.5 : 1.0;
    }
    const auto squared = [](std::int64_t value) { return value * value; };
    if (squared(a - 1) + squared(b - 1) >= r2)
        return 0;
    if (squared(a + 1) + squared(b + 1) <= r2)
        return 1;
    const bool p = squared(a - 1) + squared(b + 1) <= r2;
    const bool q = squared(a + 1) + squared(b - 1) <= r2;
    const double u = static_cast<double>(cx - mirroredX) + 0.5;
    const double v = static_cast<double>(cy - mirroredY) + 0.5;
    const auto root = [&](std::int64_t side) {
        return std::sqrt(static_cast<double>(r2 - squared(side)));
    };
    if (!p && !q)
        return (root(b - 1) / 2 + u) * 0.5 * (root(a - 1) / 2 + v);
    if (p && !q)
        return (root(b - 1) + root(b + 1)) / 4 + u;
    if (q && !p)
        return (root(a - 1) + root(a + 1)) / 4 + v;
    return (1 - (root(b + 1) / 2 + u)) * 0.5 * (root(a + 1) / 2 + v - 1) + 1;
}

double coveredArea(int x, int y, int r, double cx, double cy)
{
    const double r2 = double(r) * r;
    const Corners corners = cornersByDistance(x, y, cx, cy);
    const int inside = cornersInside(corners, r2);
    switch (inside) {
    case 0:
        return 0;
    case 4:
        return 1;
    case 1: {
        const Cut cut(corners[0], cx, cy, r2);
        return (cut.alongX - cut.a) * (cut.alongY - cut.b) / 2;
    }
    case 3: {
        const Cut cut(corners[3], cx, cy, r2);
        return (cut.alongX - cut.a) * (cut.b - cut.alongY) / 2 + 1;
    }
    case 2: {
        const Cut cut0(corners[0], cx, cy, r2);
        const Cut cut1(corners[1], cx, cy, r2);
        if (corners[0].x != corners[1].x)
            return (cut0.alongY - cut0.b + cut1.alongY - cut1.b) / 2;
        return (cut0.alongX - cut0.a + cut1.alongX - cut1.a) / 2;
    }
    default:
        assert(!"a pixel has four corners");
        return 0;
    }
}

void circleSection(int x, int y, double cx, double cy, int& r0, double& s0, int& r1, double& s1)
{
    const Corners corners = cornersByDistance(x, y, cx, cy);
    r0 = static_cast<int>(std::ceil(std::sqrt(corners[0].key)));
    r1 = r0 + 1;
    if (double(r0) * r0 > corners[3].key)
        r0 = r1 = -1;
    else if (double(r1) * r1 > corners[3].key)
        r1 = -1;
    s0 = sectionLength(corners, r0, cx, cy);
    s1 = sectionLength(corners, r1, cx, cy);
}
