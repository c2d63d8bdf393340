// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/gestures/ZoomPan.h"

#include "gui/render/geometry/ViewGeometry.h"

namespace render {

namespace {

/// How much of a view stays empty along one axis.
double borderMeasure(int first, int last, int viewLength)
{
    const double before = first;
    const double behind = viewLength - last;
    return before * before + behind * behind;
}

}  // namespace

ViewportData centredViewport(QSize image, QSize view)
{
    return {double((image.width() - view.width()) / 2),
            double((image.height() - view.height()) / 2), 0, 0, 0};
}

ViewportData fittedViewport(const ViewportData& current, QSize image, QSize view)
{
    ViewportData result = current;
    result.defined = true;
    const auto fits = [&] {
        return image.width() * result.zoom() <= view.width() &&
               image.height() * result.zoom() <= view.height();
    };
    result.setZoomPower(ViewportData::maximumZoomPower);
    while (result.zoomPower > ViewportData::minimumZoomPower && !fits())
        result.setZoomPower(result.zoomPower - 1);
    result.offsetX = (image.width() - view.width() / result.zoom()) / 2;
    result.offsetY = (image.height() - view.height() / result.zoom()) / 2;
    return result;
}

ViewportData zoomedAbout(const ViewportData& viewport, QPointF imagePoint, QPointF screenPoint,
                         int step)
{
    ViewportData result = viewport;
    result.defined = true;
    result.setZoomPower(viewport.zoomPower + step);
    result.offsetX = imagePoint.x() - screenPoint.x() / result.zoom();
    result.offsetY = imagePoint.y() - screenPoint.y() / result.zoom();
    return result;
}

ViewportData resized(const ViewportData& viewport, QSize before, QSize after)
{
    ViewportData result = viewport;
    result.offsetX += (before.width() - after.width()) / 2.0 / viewport.zoom();
    result.offsetY += (before.height() - after.height()) / 2.0 / viewport.zoom();
    return result;
}

int wheelStep(QPoint angleDelta)
{
    const int turn = angleDelta.y() != 0 ? angleDelta.y() : angleDelta.x();
    return (turn > 0) - (turn < 0);
}

ViewportData panned(const ViewportData& viewport, QPoint drag, double pixelSize, int direction)
{
    const double step = direction / pixelSize;
    return {viewport.offsetX - drag.x() * step, viewport.offsetY - drag.y() * step,
            viewport.zoomPower, viewport.rotationX, viewport.rotationY};
}

ViewportData withoutWiderBorder(const ViewportData& wanted, const ViewportData& current,
                                QSize image, QSize view)
{
    ViewportData result = wanted;
    if (wanted.zoomPower != current.zoomPower)
        return result;
    const QRect after = ViewGeometry(image, view, wanted).imageBoundary();
    const QRect before = ViewGeometry(image, view, current).imageBoundary();
    if (borderMeasure(after.left(), after.right(), view.width()) >
        borderMeasure(before.left(), before.right(), view.width()))
        result.offsetX = current.offsetX;
    if (borderMeasure(after.top(), after.bottom(), view.height()) >
        borderMeasure(before.top(), before.bottom(), view.height()))
        result.offsetY = current.offsetY;
    return result;
}

}  // namespace render
