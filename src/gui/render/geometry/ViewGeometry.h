// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where image pixels are in a view, and the way back.
#pragma once

#include "logic/records/ViewportData.h"

#include <QMatrix4x4>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

namespace render {

/// The geometry of one view: screen pixel = (scale * image pixel - offset) * zoom.
///
/// Screen pixels count from the view's top left corner, in the unit of widget coordinates; image
/// pixel n reaches from n to n + 1. A value; pure.
class ViewGeometry {
public:
    /// @param image  size of the image, empty without one
    /// @param view  size of the view
    /// @param scale  pixels of the shown picture for each image pixel
    ViewGeometry(QSize image, QSize view, const ViewportData& viewport, double scale = 1.0);

    QSize image() const { return _image; }
    QSize view() const { return _view; }
    const ViewportData& viewport() const { return _viewport; }
    /// Screen pixels for each pixel of the shown picture.
    double zoom() const { return _zoom; }

    double imageX(double screenX) const;
    double imageY(double screenY) const;
    /// Truncated; clamped to the range of int.
    int screenX(double imageX) const;
    int screenY(double imageY) const;
    QPointF imagePoint(QPointF screen) const { return {imageX(screen.x()), imageY(screen.y())}; }
    /// Both coordinates truncated, each by itself.
    QPoint screenPoint(double imageX, double imageY) const
    {
        return {screenX(imageX), screenY(imageY)};
    }

    /// The visible part of the image, in image pixels; zero if there is none.
    QRectF visibleRange() const;
    /// The view in coordinates of the viewport, which ignore the scale; zero without an image.
    QRectF windowToImage() const;
    /// The part of the view that the image covers; null without an image.
    QRect imageBoundary() const;

    /// The visible part in fractions of the image: columns and rows of the unit square to it.
    QMatrix4x4 selectRegionMatrix() const;
    /// Fractions of the image, with the height of the height map as third coordinate, to clip
    /// coordinates of the view: turned by the viewport's angles about the centre of the view in the
    /// plane of the image.
    QMatrix4x4 plotMatrix() const;

private:
    QSize _image;
    QSize _view;
    ViewportData _viewport;
    double _zoom;
    double _scale;
};

}  // namespace render
