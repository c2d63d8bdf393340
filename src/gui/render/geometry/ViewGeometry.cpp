// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/geometry/ViewGeometry.h"

#include "imagelib/image/PixelTypes.h"

#include <QVector3D>

#include <algorithm>

namespace render {

namespace {

int truncated(double value) { return morvend::datatypes::convertPixel<int>(value); }

struct Extent {
    double begin = 0;
    double length = 0;
};

/// The visible part along one axis; empty if the image is out of view.
Extent visible(double offset, double viewLength, int imageLength)
{
    const double begin = std::max(offset, 0.0);
    const double end = std::min(double(imageLength), offset + viewLength);
    return {begin, end - begin};
}

/// The covered part of the view along one axis.
Extent covered(double offset, double zoom, int imageLength, int viewLength)
{
    Extent result;
    if (offset < 0) {
        result.begin = truncated(-offset * zoom);
        result.length = truncated(imageLength * zoom);
    } else {
        result.length = std::max(truncated((imageLength - offset) * zoom), 0);
    }
    if (result.begin + result.length > viewLength)
        result.length = viewLength - result.begin;
    return result;
}

}  // namespace

ViewGeometry::ViewGeometry(QSize image, QSize view, const ViewportData& viewport, double scale)
    : _image(image)
    , _view(view)
    , _viewport(viewport)
    , _zoom(viewport.zoom())
    , _scale(scale)
{}

double ViewGeometry::imageX(double screenX) const
{
    return (_viewport.offsetX + screenX / _zoom) / _scale;
}

double ViewGeometry::imageY(double screenY) const
{
    return (_viewport.offsetY + screenY / _zoom) / _scale;
}

int ViewGeometry::screenX(double imageX) const
{
    return truncated((_scale * imageX - _viewport.offsetX) * _zoom);
}

int ViewGeometry::screenY(double imageY) const
{
    return truncated((_scale * imageY - _viewport.offsetY) * _zoom);
}

QRectF ViewGeometry::visibleRange() const
{
    const QRectF window = windowToImage();
    if (_image.isEmpty() || window.left() > _image.width() || window.right() < 0 ||
        window.top() > _image.height() || window.bottom() < 0)
        return {};
    const Extent x = visible(window.x(), window.width(), _image.width());
    const Extent y = visible(window.y(), window.height(), _image.height());
    return {x.begin, y.begin, x.length, y.length};
}

QRectF ViewGeometry::windowToImage() const
{
    if (_image.isEmpty())
        return {};
    return {_viewport.offsetX, _viewport.offsetY, _view.width() / _zoom, _view.height() / _zoom};
}

QRect ViewGeometry::imageBoundary() const
{
    if (_image.isEmpty())
        return {};
    const Extent x = covered(_viewport.offsetX, _zoom, _image.width(), _view.width());
    const Extent y = covered(_viewport.offsetY, _zoom, _image.height(), _view.height());
    return {truncated(x.begin), truncated(y.begin), truncated(x.length), truncated(y.length)};
}

QMatrix4x4 ViewGeometry::selectRegionMatrix() const
{
    const QRectF range = visibleRange();
    const auto fraction = [](double part, int whole) {
        return whole > 0 ? static_cast<float>(part / whole) : 0.0F;
    };
    QMatrix4x4 matrix;
    matrix(0, 0) = fraction(range.width(), _image.width());
    matrix(0, 3) = fraction(range.left(), _image.width());
    matrix(1, 1) = fraction(range.height(), _image.height());
    matrix(1, 3) = fraction(range.top(), _image.height());
    return matrix;
}

QMatrix4x4 ViewGeometry::plotMatrix() const
{
    // The camera is so far from the plane of the image, with so narrow an angle, that one
    // unit of the plane fills the view at zoom 1 whatever the zoom is.
    constexpr float degreesOfView = 0.8952283417211062F;  // 2 atan(1 / 128)
    const double distance = 128.0 / _zoom;
    const double width = std::max(_view.width(), 1);
    const double height = std::max(_view.height(), 1);

    QMatrix4x4 matrix;
    matrix.perspective(degreesOfView, 1.0F, 0.01F, 1024.0F);
    matrix.lookAt(QVector3D(0, 0, 0), QVector3D(0, 0, -1), QVector3D(0, 1, 0));
    const double shiftX = 2 * _viewport.offsetX / width + distance / 128 - 1;
    const double shiftY = 2 * _viewport.offsetY / height + distance / 128 - 1;
    matrix.translate(0, 0, static_cast<float>(-distance));
    matrix.rotate(_viewport.rotationX, 1, 0, 0);
    matrix.rotate(_viewport.rotationY, 0, 1, 0);
    matrix.translate(static_cast<float>(-shiftX), static_cast<float>(shiftY), 0);

    const auto unitImage =
        QMatrix4x4(static_cast<float>(2 * _image.width() / width), 0, 0, -1,                //
                   0, static_cast<float>(-2 * _image.height() / height), 0, 1, 0, 0, 1, 0,  //
                   0, 0, 0, 1);
    return matrix * unitImage;
}

}  // namespace render
