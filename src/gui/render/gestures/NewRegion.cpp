// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/gestures/NewRegion.h"

#include "gui/render/gestures/RegionDrag.h"
#include "imagelib/image/PixelTypes.h"

#include <algorithm>
#include <cmath>

namespace render {

QPoint NewRegion::pixelOf(QPointF imagePoint)
{
    using morvend::datatypes::convertPixel;
    return {convertPixel<int>(imagePoint.x()), convertPixel<int>(imagePoint.y())};
}

StatisticsData NewRegion::begin(const StatisticsData& region, QPointF point,
                                const PowderStart& powder)
{
    StatisticsData result = region;
    result.defined = true;
    result.roiActive = true;
    if (region.roiType == StatisticsData::CentredCircle) {
        _startRadius = powder.radius;
        result.innerRadius = result.outerRadius = powder.radius;
        result.powderX = powder.centre.x();
        result.powderY = powder.centre.y();
    } else {
        const QPoint pixel = pixelOf(point);
        result.beginX = result.endX = result.circleX = pixel.x();
        result.beginY = result.endY = result.circleY = pixel.y();
        result.radius = 0;
    }
    return result;
}

StatisticsData NewRegion::extend(const StatisticsData& region, const ViewGeometry& geometry,
                                 QPoint cursor, int powderRadius) const
{
    StatisticsData result = turned(region, geometry, cursor);
    result.defined = true;
    const QPoint pixel = pixelOf(geometry.imagePoint(cursor));
    result.endX = pixel.x();
    result.endY = pixel.y();
    result.radius = morvend::datatypes::convertPixel<int>(
        std::hypot(double(pixel.x()) - region.circleX, double(pixel.y()) - region.circleY));
    if (powderRadius >= 0) {
        result.innerRadius = std::min(_startRadius, powderRadius);
        result.outerRadius = std::max(_startRadius, powderRadius);
    }
    return result;
}

}  // namespace render
