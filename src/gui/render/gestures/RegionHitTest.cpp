// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/gestures/RegionHitTest.h"

#include <algorithm>
#include <cmath>

namespace render {

namespace {

using Handle = std::optional<RegionHandle>;

/// The distance within which an edge of a box can be grabbed, in screen pixels.
constexpr double edgeReach = 3;
/// The same for the rim of a circle, outwards and inwards, and for those of a powder ring.
constexpr double circleReach = 3;
constexpr double ringReach = 4;
/// A ring of this width or less has no grips within, so that its body stays within reach.
constexpr double narrowRing = 12;
/// Squares of distances: to the end marks of a line, to a line, to the centre of a ring.
constexpr double markReach2 = 25;
constexpr double lineReach2 = 5;
constexpr double centreReach2 = 4;

double square(double value) { return value * value; }

// In double: positions may be anywhere within the range of int, and their squares beyond it.
double distance2(QPointF a, QPointF b) { return square(a.x() - b.x()) + square(a.y() - b.y()); }

Handle lineHandle(const StatisticsData& region, const ViewGeometry& geometry, QPointF cursor)
{
    if (region.beginX == region.endX && region.beginY == region.endY)
        return {};
    const QPointF begin = geometry.screenPoint(region.beginX + 0.5, region.beginY + 0.5);
    const QPointF end = geometry.screenPoint(region.endX + 0.5, region.endY + 0.5);
    if (distance2(cursor, begin) < markReach2)
        return RegionHandle::LineBegin;
    if (distance2(cursor, end) < markReach2)
        return RegionHandle::LineEnd;
    const double along = QPointF::dotProduct(cursor - begin, end - begin) / distance2(begin, end);
    if (!(along > 0 && along < 1))
        return {};
    if (distance2(cursor, begin + along * (end - begin)) >= lineReach2)
        return {};
    return RegionHandle::Body;
}

/// Which of two opposite edges the cursor is near: the first, the second or none.
int nearEdge(double cursor, double first, double second)
{
    const double toFirst = std::abs(cursor - first);
    const double toSecond = std::abs(cursor - second);
    if (toFirst < edgeReach && toFirst < toSecond)
        return 1;
    if (toSecond < edgeReach && toSecond < toFirst)
        return 2;
    return 0;
}

Handle boxHandle(const StatisticsData& region, const ViewGeometry& geometry, QPointF cursor)
{
    const QPointF begin = geometry.screenPoint(region.beginX, region.beginY);
    const QPointF end = geometry.screenPoint(region.endX, region.endY);
    const auto outside = [](double at, double first, double second) {
        return at < std::min(first, second) - edgeReach || at > std::max(first, second) + edgeReach;
    };
    if (outside(cursor.x(), begin.x(), end.x()) || outside(cursor.y(), begin.y(), end.y()))
        return {};

    const bool nearBeginY = std::abs(cursor.y() - begin.y()) < edgeReach;
    const bool nearEndY = std::abs(cursor.y() - end.y()) < edgeReach;
    switch (nearEdge(cursor.x(), begin.x(), end.x())) {
    case 1:
        return nearBeginY ? RegionHandle::CornerBeginBegin
               : nearEndY ? RegionHandle::CornerBeginEnd
                          : RegionHandle::EdgeBeginX;
    case 2:
        return nearBeginY ? RegionHandle::CornerEndBegin
               : nearEndY ? RegionHandle::CornerEndEnd
                          : RegionHandle::EdgeEndX;
    default:
        break;
    }
    switch (nearEdge(cursor.y(), begin.y(), end.y())) {
    case 1:
        return RegionHandle::EdgeBeginY;
    case 2:
        return RegionHandle::EdgeEndY;
    default:
        return RegionHandle::Body;
    }
}

Handle circleHandle(const StatisticsData& region, const ViewGeometry& geometry, QPointF cursor)
{
    const QPointF centre = geometry.screenPoint(region.circleX + 0.5, region.circleY + 0.5);
    const double d2 = distance2(cursor, centre);
    const double radius = geometry.zoom() * region.radius;
    if (d2 > square(radius + circleReach))
        return {};
    return d2 >= square(std::max(radius - circleReach, 0.0)) ? RegionHandle::CircleRim
                                                             : RegionHandle::Body;
}

Handle ringHandle(const StatisticsData& region, const ViewGeometry& geometry, QPointF cursor)
{
    const double d2 = distance2(cursor, geometry.screenPoint(region.powderX, region.powderY));
    const double outer = geometry.zoom() * region.outerRadius;
    const double inner = geometry.zoom() * region.innerRadius;
    if (d2 < centreReach2)
        return RegionHandle::PowderCentre;
    if (d2 > square(outer + ringReach) || d2 < square(std::max(inner - ringReach, 0.0)))
        return {};
    if (d2 > square(outer))
        return RegionHandle::OuterRim;
    const bool wide = std::abs(outer - inner) > narrowRing;
    if (wide && d2 >= square(std::max(outer - ringReach, 0.0)))
        return RegionHandle::OuterRim;
    if (d2 < square(inner))
        return RegionHandle::InnerRim;
    if (wide && d2 <= square(inner + ringReach))
        return RegionHandle::InnerRim;
    return RegionHandle::Body;
}

}  // namespace

std::optional<RegionHandle> regionHandleAt(const StatisticsData& region,
                                           const ViewGeometry& geometry, QPoint cursor)
{
    switch (region.roiType) {
    case StatisticsData::Line:
        return lineHandle(region, geometry, cursor);
    case StatisticsData::Box:
        return boxHandle(region, geometry, cursor);
    case StatisticsData::Circle:
        return circleHandle(region, geometry, cursor);
    case StatisticsData::CentredCircle:
        return ringHandle(region, geometry, cursor);
    default:
        return {};
    }
}

bool nextToDiameter(const StatisticsData& region, const ViewGeometry& geometry, QPoint cursor)
{
    if (region.roiType != StatisticsData::Circle)
        return false;
    const QPointF centre = geometry.screenPoint(region.circleX + 0.5, region.circleY + 0.5);
    const QPointF offset = QPointF(cursor) - centre;
    const double along = std::cos(region.theta) * offset.x() + std::sin(region.theta) * offset.y();
    if (std::abs(along) >= region.radius * geometry.zoom() + 5)
        return false;
    return distance2(cursor, centre) - square(along) < lineReach2;
}

}  // namespace render
