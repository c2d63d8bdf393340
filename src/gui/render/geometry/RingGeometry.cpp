// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/geometry/RingGeometry.h"

#include "gui/render/geometry/CircleGeometry.h"
#include "imagelib/image/PixelTypes.h"

#include <algorithm>
#include <cmath>

namespace render {

namespace {

/// Rings over the width of what is visible.
constexpr double ringsInView = 3;
/// Space that a label leaves on its far side.
constexpr int labelMargin = 4;

bool liesIn(const QRect& boundary, QPoint point)
{
    return point.x() >= boundary.left() && point.x() <= boundary.right() &&
           point.y() >= boundary.top() && point.y() <= boundary.bottom();
}

}  // namespace

int ringCount(const ViewGeometry& geometry)
{
    const double visible = geometry.visibleRange().width();
    if (!(visible > 0))
        return 0;
    // The last sliver of an image leaving the view would ask for a huge number of rings.
    return morvend::datatypes::convertPixel<int>(ringsInView * geometry.image().width() /
                                                 std::max(visible, 1.0));
}

std::optional<ScreenRing> screenRing(QPointF centre, double radius, const ViewGeometry& geometry)
{
    if (!std::isfinite(centre.x()) || !std::isfinite(centre.y()) || !std::isfinite(radius) ||
        radius < 0)
        return {};
    const QPoint topLeft = geometry.screenPoint(centre.x() - radius, centre.y() - radius);
    const QPoint bottomRight = geometry.screenPoint(centre.x() + radius, centre.y() + radius);
    const double width = double(bottomRight.x()) - topLeft.x();
    const double height = double(bottomRight.y()) - topLeft.y();
    constexpr double most = 1 << 30;
    if (width > most || height > most)
        return {};

    ScreenRing ring;
    ring.box = QRect(topLeft, QSize(int(width), int(height)));
    ring.centre = geometry.screenPoint(centre.x(), centre.y());
    ring.radius = int(width) / 2;
    const DistanceRange range = minMaxDistanceFromRect(ring.centre, geometry.view());
    const double radius2 = double(ring.radius) * ring.radius;
    if (radius2 < range.minimumSquared || radius2 > range.maximumSquared)
        return {};
    return ring;
}

std::optional<QPoint> labelAnchor(const ScreenRing& ring, const QRect& boundary)
{
    const QPoint top = ring.centre - QPoint(0, ring.radius);
    if (liesIn(boundary, top))
        return top;
    const QPoint corner = boundary.topLeft();
    for (const auto& [begin, end] :
         {std::pair(corner, boundary.topRight()), std::pair(corner, boundary.bottomLeft()),
          std::pair(boundary.topRight(), boundary.bottomRight())}) {
        const auto crossings = intersectCircleWithLine(ring.centre, ring.radius, begin, end);
        if (crossings.count > 0)
            return crossings.first;
    }
    const QPoint leftmost = ring.centre - QPoint(ring.radius, 0);
    if (liesIn(boundary, leftmost))
        return leftmost;
    return {};
}

QPoint labelCorner(QPoint anchor, QSize text, const QRect& boundary)
{
    // Limits by the size of the boundary, not by its far edges: where the image begins within the
    // view, labels stay near that side.
    const int right = boundary.right() - boundary.left() - labelMargin - text.width();
    const int bottom = boundary.bottom() - boundary.top() - labelMargin - text.height();
    return {std::max(std::min(right, anchor.x()), boundary.left()),
            std::max(std::min(bottom, anchor.y()), boundary.top())};
}

}  // namespace render
