// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours images on the processor, for views whose OpenGL stack has no shaders.
#pragma once

#include "gui/render/Colouring.h"
#include "gui/render/DisplayImage.h"

#include <QImage>
#include <QRect>
#include <QRectF>

namespace render {

/// The coloured picture of the part of an image that a view shows.
class CpuColouring {
public:
    using MImage = morvend::imglib::MImage;

    /// One colour for each pixel of a part of the image, which must lie in it (asserted), in the
    /// layout of QImage::Format_ARGB32_Premultiplied.
    static MImage rgb(const DisplayImage& image, const Colouring& colouring, const QRect& part);

    /// Image or colouring have changed.
    void invalidate() { _part = {}; }
    /// Draws the visible part; colours it first where that has not been done.
    /// @param visible  in image pixels
    /// @param target  in widget coordinates
    void draw(QPainter& painter, const DisplayImage& image, const Colouring& colouring,
              const QRectF& visible, const QRectF& target);

private:
    QRect _part;
    MImage _pixels;
    QImage _picture;  // a view on the pixels
};

}  // namespace render
