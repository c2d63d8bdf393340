// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Outlines of which only a small part may be visible.
#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QTransform>

#include <vector>

namespace render {

/// A line of any length in screen pixels, together with the length along it, so that dashes stay in
/// their places when only a part of it is drawn.
///
/// At a high zoom a region reaches over millions of screen pixels. A painter would walk along all
/// of its dashes, and would replace its circles by too few straight lines. Pure.
class Outline {
public:
    struct Point {
        QPointF at;
        double way = 0;  ///< from the start of the outline
    };
    using Piece = std::vector<Point>;

    /// Straight lines from point to point.
    static Outline along(const QPolygonF& points);
    /// The ellipse within a box, from its rightmost point on; less than a tenth of a pixel from the
    /// true curve within the window, coarse outside. Empty when the box is not finite.
    static Outline ellipse(const QRectF& box, const QRectF& window);

    /// The outline turned and moved; lengths along it are unchanged.
    Outline mapped(const QTransform& transform) const;
    /// The visible part of the outline; connected parts are one piece.
    std::vector<Piece> within(const QRectF& window) const;
    /// The area that the outline, which must be convex, encloses within the window.
    QPolygonF areaWithin(const QRectF& window) const;

private:
    Piece _points;
};

}  // namespace render
