// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/CpuColouring.h"

#include "gui/render/ParallelRows.h"
#include "gui/render/geometry/ViewGeometry.h"
#include "imagelib/display/ColorMapper.h"
#include "logic/support/Assert.h"

#include <QPaintEngine>
#include <QPainter>

#include <limits>
#include <vector>

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

/// True if the image has more pixels than the screen gives it.
bool isReduced(const ViewportData& viewport, double devicePixelRatio)
{
    return viewport.zoom() * devicePixelRatio < 1;
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
        _rgbImage = {};  // the new colours reuse its memory while it is warm
        _rgbImage = rgb(image, colouring, wanted);
        _part = wanted;
        _colouredPixels += _rgbImage.size();
        _picture = QImage(static_cast<const uchar*>(_rgbImage.cdata()), _rgbImage.width(),
                          _rgbImage.height(), QImage::Format_ARGB32_Premultiplied);
        _composition = {};
    }
    const double devicePixelRatio = painter.device()->devicePixelRatioF();
    if (isReduced(viewport, devicePixelRatio) &&
        painter.paintEngine()->type() == QPaintEngine::Raster) {
        _paintReduced(painter, viewport);
        return;
    }
    _compose(viewport, view, devicePixelRatio);
    painter.drawImage(QPoint(0, 0), _composition);
}

void CpuColouring::_compose(const ViewportData& viewport, QSize view, double devicePixelRatio)
{
    const QSize size(qRound(view.width() * devicePixelRatio),
                     qRound(view.height() * devicePixelRatio));
    if (_composition.size() == size && _composition.devicePixelRatio() == devicePixelRatio &&
        _composedViewport == viewport)
        return;
    _composition = QImage(size, QImage::Format_ARGB32_Premultiplied);
    _composition.setDevicePixelRatio(devicePixelRatio);
    _composition.fill(Qt::transparent);
    _composedViewport = viewport;
    if (isReduced(viewport, devicePixelRatio)) {
        QPainter painter(&_composition);
        _paintReduced(painter, viewport);
    } else {
        _composePixels({view, viewport, devicePixelRatio});
    }
}

void CpuColouring::_composePixels(const ScreenPixels& screen)
{
    const QRect target = screen.showing(_part);
    const auto width = static_cast<std::size_t>(target.width());
    std::vector<int> columns(width);
    for (std::size_t x = 0; x < width; ++x)
        columns[x] = screen.column(target.left() + int(x)) - _part.left();
    uchar* const composition = _composition.bits();
    const qsizetype bytesPerLine = _composition.bytesPerLine();
    parallelRows(target.height(), width, [&](int i) {
        const int y = target.top() + i;
        const auto* from =
            reinterpret_cast<const QRgb*>(_picture.constScanLine(screen.row(y) - _part.top()));
        auto* to = reinterpret_cast<QRgb*>(composition + y * bytesPerLine) + target.left();
        for (std::size_t x = 0; x < width; ++x)
            to[x] = from[columns[x]];
    });
}

void CpuColouring::_paintReduced(QPainter& painter, const ViewportData& viewport) const
{
    const double zoom = viewport.zoom();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate((_part.x() - viewport.offsetX) * zoom, (_part.y() - viewport.offsetY) * zoom);
    painter.scale(zoom, zoom);
    painter.drawImage(QPoint(0, 0), _picture);
    painter.restore();
}

}  // namespace render
