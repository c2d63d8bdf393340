// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours on the processor what shaders would colour.
#pragma once

#include "gui/render/Colouring.h"
#include "gui/render/DisplayImage.h"
#include "logic/records/ViewportData.h"

#include <QImage>
#include <QRect>
#include <QSize>

class QPainter;

namespace render {

/// The picture of a view without OpenGL surface, the same as by shaders at each zoom: the image
/// pixel under the centre of each screen pixel, as ScreenPixels says. Only these are read, and they
/// are kept, so that other colours need no look at the image.
class SampledColouring {
public:
    /// The image has changed.
    void forget() { *this = SampledColouring(_colouredPixels); }
    /// The colouring has changed.
    void invalidate() { _picture = {}; }

    /// Has the pixels that this viewport shows been taken?
    bool holds(const ViewportData& viewport, QSize view, double devicePixelRatio) const;
    /// Takes the pixels that a viewport shows.
    /// @param side  of the blocks for which the image's pixels stand
    void take(const DisplayImage& image, const ViewportData& viewport, QSize view,
              double devicePixelRatio, int side = 1);
    /// Draws what was taken last, over the whole view.
    void draw(QPainter& painter, const Colouring& colouring);
    std::size_t colouredPixels() const { return _colouredPixels; }

    SampledColouring() = default;

private:
    explicit SampledColouring(std::size_t colouredPixels)
        : _colouredPixels(colouredPixels)
    {}
    void _colour(const Colouring& colouring);

    DisplayImage _sample;  // one pixel for each of _target
    QRect _target;         // in screen pixels
    ViewportData _viewport;
    QSize _view;
    double _devicePixelRatio = 0;  // none taken yet
    QImage _picture;
    std::size_t _colouredPixels = 0;
};

}  // namespace render
