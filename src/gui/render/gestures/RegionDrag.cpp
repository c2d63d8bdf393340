// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/gestures/RegionDrag.h"

#include "imagelib/image/PixelTypes.h"

#include <cmath>
#include <cstdlib>

namespace render {

namespace {

using morvend::datatypes::convertPixel;

/// Least distance of a powder ring's centre from the border of the view, in screen pixels.
constexpr double borderDistance = 5;

/// Records may hold any number, also one that a step would move beyond the range of int.
void shift(int& value, int step) { value = convertPixel<int>(double(value) + double(step)); }

/// Takes whole image pixels out of a residual in screen pixels.
int take(int& residual, double zoom)
{
    if (!(std::abs(double(residual)) >= zoom) || zoom <= 0)
        return 0;
    const int step = convertPixel<int>(residual / zoom);
    residual -= convertPixel<int>(step * zoom);
    return step;
}

double distance(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }

void shiftBody(StatisticsData& region, int x, int y, int radius)
{
    for (int* value : {&region.beginX, &region.endX, &region.circleX})
        shift(*value, x);
    for (int* value : {&region.beginY, &region.endY, &region.circleY})
        shift(*value, y);
    if (double(region.innerRadius) > -double(radius)) {
        shift(region.innerRadius, radius);
        shift(region.outerRadius, radius);
    }
}

void dragRim(StatisticsData& region, QPointF point, RegionHandle& handle)
{
    const QPointF centre(convertPixel<int>(region.powderX), convertPixel<int>(region.powderY));
    const int radius = convertPixel<int>(distance(point, centre));
    const int fixedRadius =
        handle == RegionHandle::InnerRim ? region.outerRadius : region.innerRadius;
    if (radius >= fixedRadius) {
        handle = RegionHandle::OuterRim;
        region.outerRadius = radius;
    } else {
        handle = RegionHandle::InnerRim;
        region.innerRadius = radius;
    }
}

}  // namespace

std::optional<RegionDrag::Step> RegionDrag::step(const StatisticsData& region,
                                                 const ViewGeometry& geometry, QPoint cursor)
{
    const double zoom = geometry.zoom();
    _residualX += cursor.x() - _last.x();
    _residualY += cursor.y() - _last.y();
    Step step;
    step.x = take(_residualX, zoom);
    step.y = take(_residualY, zoom);
    if (region.roiType == StatisticsData::CentredCircle) {
        const QPointF centre = geometry.screenPoint(region.powderX, region.powderY);
        _residualRadius =
            convertPixel<int>(distance(cursor, centre) - distance(_last, centre) + _residualRadius);
        step.radius = take(_residualRadius, zoom);
    }
    _last = cursor;
    if (step.x == 0 && step.y == 0 && step.radius == 0)
        return {};
    return step;
}

std::optional<StatisticsData> RegionDrag::move(const StatisticsData& region,
                                               const ViewGeometry& geometry, QPoint cursor,
                                               RegionHandle& handle)
{
    const auto by = step(region, geometry, cursor);
    if (!by)
        return {};
    StatisticsData result = region;
    const QPointF point = geometry.imagePoint(cursor);
    using enum RegionHandle;
    const auto isOneOf = [handle](auto... handles) { return ((handle == handles) || ...); };
    if (handle == Body)
        shiftBody(result, by->x, by->y, by->radius);
    if (isOneOf(LineBegin, EdgeBeginX, CornerBeginBegin, CornerBeginEnd))
        shift(result.beginX, by->x);
    if (isOneOf(LineBegin, EdgeBeginY, CornerBeginBegin, CornerEndBegin))
        shift(result.beginY, by->y);
    if (isOneOf(LineEnd, EdgeEndX, CornerEndEnd, CornerEndBegin))
        shift(result.endX, by->x);
    if (isOneOf(LineEnd, EdgeEndY, CornerEndEnd, CornerBeginEnd))
        shift(result.endY, by->y);
    if (handle == CircleRim)
        result.radius = convertPixel<int>(distance(point, QPointF(region.circleX, region.circleY)));
    if (isOneOf(InnerRim, OuterRim))
        dragRim(result, point, handle);
    return result;
}

StatisticsData turned(const StatisticsData& region, const ViewGeometry& geometry, QPoint cursor)
{
    const QPoint centre = geometry.screenPoint(region.circleX + 0.5, region.circleY + 0.5);
    StatisticsData result = region;
    result.theta = std::atan2(double(cursor.y()) - centre.y(), double(cursor.x()) - centre.x());
    return result;
}

std::optional<StatisticsData> recentred(const StatisticsData& region, const ViewGeometry& geometry,
                                        QPoint cursor)
{
    const QRectF window = geometry.windowToImage();
    const QPointF centre = geometry.imagePoint(cursor);
    const double room = borderDistance / geometry.zoom();
    const auto within = [room](double at, double first, double last) {
        return at - first >= room && last - at >= room;
    };
    if (!within(centre.x(), window.left(), window.right()) ||
        !within(centre.y(), window.top(), window.bottom()))
        return {};
    StatisticsData result = region;
    result.powderX = centre.x();
    result.powderY = centre.y();
    return result;
}

}  // namespace render
