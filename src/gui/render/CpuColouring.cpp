// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours images on the processor, for views whose OpenGL stack has no shaders.
#include "gui/render/CpuColouring.h"

#include "gui/render/ParallelRows.h"
#include "imagelib/display/ColorMapper.h"
#include "logic/support/Assert.h"

#include <QPaintEngine>
#include <QPainter>

#include <limits>

namespace render {

namespace {

morvend::imglib::ColorSettings settingsOf(const Colouring& colouring)
{
    const ContrastData& contrast = colouring.contrast;
    return {contrast.foreground,
            contrast.background,
            contrast.logForeground(),
            contrast.colorTable,
            false,
            colouring.saturation.value_or(std::numeric_limits<int>::max()),
            colouring.highlightDefective,
            colouring.saturation.has_value()};
}

}  // namespace

CpuColouring::MImage CpuColouring::rgb(const DisplayImage& display, const Colouring& colouring,
                                       const QRect& part)
{
    const MImage& _image = display.image();
    const int x = part.x();
    const int y = part.y();
    const int width = part.width();
    const int height = part.height();
    assert(x >= 0);
    assert(x < _image.width());
    assert(y >= 0);
    assert(y < _image.height());
    assert(width >= 0);
    assert(x + width <= _image.width());
    assert(height >= 0);
    assert(y + height <= _image.height());

    MImage result(width, height, morvend::datatypes::UINT, 32);
    if (result.empty())
        return result;
    const morvend::imglib::ColorMapper mapper(settingsOf(colouring), _image.type());
    auto* colours = static_cast<std::uint32_t*>(result.data());
    const auto length = static_cast<std::size_t>(width);
    parallelRows(height, length, [&](int row) {
        const auto first =
            static_cast<std::size_t>(y + row) * static_cast<std::size_t>(_image.width()) +
            static_cast<std::size_t>(x);
        mapper.run({colours + static_cast<std::size_t>(row) * length, length}, _image,
                   &display.mask(), first);
    });
    return result;
}

void CpuColouring::invalidate()
{
    _part = {};
    _composition = {};
}

void CpuColouring::draw(QPainter& painter, const DisplayImage& image, const Colouring& colouring,
                        const ViewportData& viewport, QSize view)
{
    const QRect wanted = ViewGeometry(image.size(), view, viewport).visibleRange().toAlignedRect() &
                         QRect(QPoint(0, 0), image.size());
    if (wanted.isEmpty())
        return;
    if (!_part.contains(wanted)) {
        _picture = {};
        _rgbImage = {};  // its memory comes again, warm, for the new colours
        _rgbImage = rgb(image, colouring, wanted);
        _part = wanted;
        _colouredPixels += _rgbImage.size();
        _picture = QImage(static_cast<const uchar*>(_rgbImage.cdata()), _rgbImage.width(),
                          _rgbImage.height(), QImage::Format_ARGB32_Premultiplied);
        _composition = {};
    }
    if (painter.paintEngine()->type() == QPaintEngine::Raster) {
        _paint(painter, viewport);
        return;
    }
    _compose(viewport, view, painter.device()->devicePixelRatioF());
    painter.drawImage(QPoint(0, 0), _composition);
}

void CpuColouring::_compose(const ViewportData& viewport, QSize view, double devicePixelRatio)
{
    const QSize size(qRound(view.width() * devicePixelRatio),
                     qRound(view.height() * devicePixelRatio));
    if (_composition.size() == size && _composedViewport == viewport)
        return;
    _composition = QImage(size, QImage::Format_ARGB32_Premultiplied);
    _composition.setDevicePixelRatio(devicePixelRatio);
    _composition.fill(Qt::transparent);
    _composedViewport = viewport;
    QPainter painter(&_composition);
    _paint(painter, viewport);
}

void CpuColouring::_paint(QPainter& painter, const ViewportData& viewport) const
{
    const double zoom = viewport.zoom();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom < 1);
    painter.translate((_part.x() - viewport.offsetX) * zoom, (_part.y() - viewport.offsetY) * zoom);
    painter.scale(zoom, zoom);
    painter.drawImage(QPoint(0, 0), _picture);
    painter.restore();
}

}  // namespace render
