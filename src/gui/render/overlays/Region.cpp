// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/Region.h"

#include "gui/render/overlays/Marks.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace render {

namespace {

/// The outer circle of a free circle, in radii.
constexpr double surround = 1.2;
/// Radius of the marks at the ends of a line, in screen pixels.
constexpr double markRadius = 5;

QColor shade(int alpha) { return {0, 0, 0, alpha}; }

class RegionPainter {
public:
    RegionPainter(QPainter& painter, const ViewGeometry& geometry)
        : _painter(painter)
        , _geometry(geometry)
        , _window(marks::windowOf(geometry.view()))
        , _black(marks::squarePen(Qt::black, 2))
        , _white(_black)
    {
        _white.setColor(Qt::white);
        _white.setDashPattern({10, 10});
    }

    void line(const StatisticsData& region)
    {
        const QPointF begin = _geometry.screenPoint(region.beginX + 0.5, region.beginY + 0.5);
        const QPointF end = _geometry.screenPoint(region.endX + 0.5, region.endY + 0.5);
        const double length = std::hypot(end.x() - begin.x(), end.y() - begin.y());
        // The line runs from rim to rim of the marks.
        const QPointF rim = length > 0 ? markRadius / length * (end - begin) : QPointF();
        _painter.setPen(_black);
        for (const QPointF& centre : {begin, end})
            marks::drawOutline(_painter, circle(centre, markRadius), _window);
        stroke({Outline::along({begin + rim, end - rim})});
    }

    void box(const StatisticsData& region)
    {
        const QPointF begin = _geometry.screenPoint(region.beginX, region.beginY);
        const QPointF end = _geometry.screenPoint(region.endX, region.endY);
        const QPointF first(std::min(begin.x(), end.x()), std::min(begin.y(), end.y()));
        const QPointF last(std::max(begin.x(), end.x()) - 1, std::max(begin.y(), end.y()) - 1);
        const QRectF whole(first, last + QPointF(1, 1));
        _painter.fillRect(whole & _window, shade(150));
        stroke({Outline::along(
            {first, QPointF(last.x(), first.y()), last, QPointF(first.x(), last.y()), first})});
    }

    void freeCircle(const StatisticsData& region)
    {
        const QPointF centre(region.circleX + 0.5, region.circleY + 0.5);
        const Outline inner = imageCircle(centre, region.radius);
        const Outline outer = imageCircle(centre, surround * region.radius);
        for (const Outline* each : {&inner, &outer})
            fill({each->areaWithin(_window)}, shade(100));
        stroke({inner, outer});
        const QPointF arm = region.radius * QPointF(std::cos(region.theta), std::sin(region.theta));
        stroke({Outline::along({screen(centre - arm), screen(centre + arm)})});
    }

    void powderRing(const StatisticsData& region)
    {
        const QPointF centre(region.powderX, region.powderY);
        const Outline inner = imageCircle(centre, region.innerRadius);
        const Outline outer = imageCircle(centre, region.outerRadius);
        fill({inner.areaWithin(_window), outer.areaWithin(_window)}, shade(160));
        stroke({inner, outer});
    }

private:
    QPointF screen(QPointF image) const { return _geometry.screenPoint(image.x(), image.y()); }
    Outline circle(QPointF centre, double radius) const
    {
        return Outline::ellipse(
            QRectF(centre - QPointF(radius, radius), centre + QPointF(radius, radius)), _window);
    }
    /// By its converted corners.
    Outline imageCircle(QPointF centre, double radius) const
    {
        const QPointF corner(radius, radius);
        return Outline::ellipse(QRectF(screen(centre - corner), screen(centre + corner)), _window);
    }

    /// Fills what is within an odd number of the areas.
    void fill(const QList<QPolygonF>& areas, const QColor& color)
    {
        QPainterPath path;
        for (const QPolygonF& area : areas) {
            if (!area.isEmpty())
                path.addPolygon(area);
            path.closeSubpath();
        }
        _painter.fillPath(path, color);
    }

    void stroke(const QList<Outline>& outlines)
    {
        for (const QPen& pen : {_black, _white}) {
            _painter.setPen(pen);
            for (const Outline& outline : outlines)
                marks::drawOutline(_painter, outline, _window);
        }
    }

    QPainter& _painter;
    const ViewGeometry& _geometry;
    QRectF _window;
    QPen _black;
    QPen _white;
};

}  // namespace

void drawRegion(QPainter& painter, const ViewGeometry& geometry, const StatisticsData& region)
{
    if (!region.defined || !region.roiActive)
        return;
    RegionPainter regions(painter, geometry);
    switch (region.roiType) {
    case StatisticsData::Line:
        regions.line(region);
        break;
    case StatisticsData::Box:
        regions.box(region);
        break;
    case StatisticsData::Circle:
        regions.freeCircle(region);
        break;
    case StatisticsData::CentredCircle:
        if (region.centredCircleDefined())
            regions.powderRing(region);
        break;
    default:
        break;
    }
}

}  // namespace render
