// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours images on the processor, for views whose OpenGL stack has no shaders.
#include "gui/render/CpuColouring.h"

#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MRect.h"
#include "logic/support/Assert.h"

#include <QPainter>

#include <limits>

namespace render {

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

    const ContrastData& contrast = colouring.contrast;
    morvend::imglib::MRect rect(x, y, width, height);
    MImage result;
    morvend::imglib::MColorMap::rgb(result, _image, contrast.foreground, contrast.background,
                                    contrast.logForeground(), *contrast.colorTable, "ARGB",
                                    &display.mask(), &rect,
                                    colouring.saturation.value_or(std::numeric_limits<int>::max()),
                                    colouring.highlightDefective, colouring.saturation.has_value());
    return result;
}

void CpuColouring::draw(QPainter& painter, const DisplayImage& image, const Colouring& colouring,
                        const QRectF& visible, const QRectF& target)
{
    const QRect wanted = visible.toAlignedRect() & QRect(QPoint(0, 0), image.size());
    if (wanted.isEmpty())
        return;
    if (!_part.contains(wanted)) {
        _pixels = rgb(image, colouring, wanted);
        _part = wanted;
        _picture = QImage(static_cast<const uchar*>(_pixels.cdata()), _pixels.width(),
                          _pixels.height(), QImage::Format_ARGB32_Premultiplied);
    }
    painter.drawImage(target, _picture, visible.translated(-_part.topLeft()));
}

}  // namespace render
