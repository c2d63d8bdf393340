// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours images on the processor, for views whose OpenGL stack has no shaders.
#pragma once

#include "gui/render/Colouring.h"
#include "gui/render/DisplayImage.h"
#include "gui/render/ScreenPixels.h"
#include "logic/records/ViewportData.h"

#include <QImage>
#include <QRect>
#include <QSize>

class QPainter;

namespace render {

/// The coloured picture of the part of an image that a view shows. Only that part is ever coloured,
/// split over the cores, and only when it changed.
class CpuColouring {
public:
    using MImage = morvend::imglib::MImage;

    /// One colour for each pixel of a part of the image, which must be in it (asserted), in the
    /// layout of QImage::Format_ARGB32_Premultiplied.
    static MImage rgb(const DisplayImage& image, const Colouring& colouring, const QRect& part);

    /// Call when image or colouring have changed.
    void invalidate();
    /// Draws the visible part, in widget coordinates: each screen pixel as ScreenPixels says, or,
    /// if the image has more of them than the screen, reduced with neighbours averaged.
    /// @param view  size of the view
    void draw(QPainter& painter, const DisplayImage& image, const Colouring& colouring,
              const ViewportData& viewport, QSize view);
    /// Pixels coloured for draw() so far.
    std::size_t colouredPixels() const { return _colouredPixels; }

private:
    void _paintReduced(QPainter& painter, const ViewportData& viewport) const;
    void _compose(const ViewportData& viewport, QSize view, double devicePixelRatio);
    void _composePixels(const ScreenPixels& screen);

    QRect _part;
    MImage _rgbImage;
    QImage _picture;  // refers to its pixels
    /// The view as shown on the screen: painters have their own rounding rules, and some would
    /// have to send the picture to the graphics card, which may be too large for it.
    QImage _composition;
    ViewportData _composedViewport;
    std::size_t _colouredPixels = 0;
};

}  // namespace render
