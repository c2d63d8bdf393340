// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/geometry/CircleGeometry.h"

#include "imagelib/image/PixelTypes.h"
#include "logic/support/Assert.h"

#include <algorithm>
#include <cmath>

namespace render {

namespace {

double square(double value) { return value * value; }

/// Square of the distance to the nearest corner or edge, found by the nine zones around a
/// rectangle.
double minimumSquared(double x, double y, double w, double h)
{
    const bool beside = x >= 1 && x <= w;
    if (x < 1 && y <= 0)
        return square(x) + square(y);
    if (beside && y <= 0)
        return square(y);
    if (x > w && y < 0)
        return square(x - w) + square(y);
    if (x > w && y > h)
        return square(x - w) + square(y - h);
    if (beside && y > h)
        return square(y - h);
    if (x > w && y >= 1 && y <= h)
        return square(x - w);
    if (x < 1 && y > h)
        return square(x) + square(y - h);
    return 0;
}

}  // namespace

DistanceRange minMaxDistanceFromRect(QPoint point, QSize size)
{
    const double x = point.x();
    const double y = point.y();
    DistanceRange range;
    range.minimumSquared = minimumSquared(x, y, size.width(), size.height());
    range.maximumSquared = std::max(square(x), square(x - size.width())) +
                           std::max(square(y), square(y - size.height()));
    return range;
}

LineCrossings intersectCircleWithLine(QPoint centre, double radius, QPoint begin, QPoint end)
{
    assert(radius >= 0);
    const double dx = double(end.x()) - begin.x();
    const double dy = double(end.y()) - begin.y();
    const double length2 = square(dx) + square(dy);
    if (length2 == 0)
        return {};
    const double fx = double(begin.x()) - centre.x();
    const double fy = double(begin.y()) - centre.y();
    const double discriminant = square(radius) * length2 - square(fy * dx - fx * dy);
    if (discriminant < 0)
        return {};

    LineCrossings crossings;
    const double middle = -fx * dx - fy * dy;
    for (const double root : {-std::sqrt(discriminant), std::sqrt(discriminant)}) {
        const double t = (middle + root) / length2;
        if (!(t >= 0 && t <= 1))
            continue;
        using morvend::datatypes::convertPixel;
        const QPoint point(convertPixel<int>(begin.x() * (1 - t) + end.x() * t),
                           convertPixel<int>(begin.y() * (1 - t) + end.y() * t));
        (crossings.count == 0 ? crossings.first : crossings.second) = point;
        ++crossings.count;
    }
    return crossings;
}

}  // namespace render
