// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Circles against rectangles and lines.
#pragma once

#include <QPoint>
#include <QSize>

namespace render {

/// Squares of the distances between a point and a rectangle.
struct DistanceRange {
    double minimumSquared = 0;
    double maximumSquared = 0;
};

/// The least and the greatest distance of a rectangle from the origin to `size`. The minimum is 0
/// for points within, beside its left edge, and right of it in the row of its upper edge. Pure.
DistanceRange minMaxDistanceFromRect(QPoint point, QSize size);

/// Where a circle crosses a line segment.
struct LineCrossings {
    int count = 0;
    /// Truncated; (0, 0) beyond the count.
    QPoint first;
    QPoint second;
};

/// The crossing nearer to the segment's second end is the second. A segment without length is
/// never crossed. Pure.
LineCrossings intersectCircleWithLine(QPoint centre, double radius, QPoint begin, QPoint end);

}  // namespace render
