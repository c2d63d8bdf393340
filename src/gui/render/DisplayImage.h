// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image that a view shows.
#pragma once

#include "gui/render/PixelKind.h"
#include "imagelib/image/MImage.h"

#include <QRect>
#include <QSize>

namespace render {

/// An image with its mask, both as the loader left them: shown as 32-bit signed, unsigned or float
/// pixels, but never copied into such a type. Shaders read narrow pixels as stored; wider ones
/// are converted on their way to the card, the visible ones on their way to a colour.
class DisplayImage {
public:
    using MImage = morvend::imglib::MImage;

    /// No image.
    DisplayImage() = default;
    /// @param base  must carry a pixel mask (asserted), as every image from the loader does; one
    /// of another size counts as good pixels
    explicit DisplayImage(const MImage& base);

    bool empty() const { return _image.empty(); }
    QSize size() const { return {_image.width(), _image.height()}; }
    PixelKind kind() const { return _kind; }
    const MImage& image() const { return _image; }
    const MImage& mask() const { return _mask; }

private:
    PixelKind _kind = PixelKind::Int;
    MImage _image;
    MImage _mask;
};

/// Pixels of `part` of an image as 32-bit values of its kind, row by row; wider integers are
/// clamped to the range. Large parts are split over the cores.
/// @param out  space for one 32-bit value per pixel of `part`, which must be in the image
/// (asserted)
void displayPixels(const morvend::imglib::MImage& image, const QRect& part, void* out);
/// The same for a mask, whose values become bytes of the same low bits.
void maskPixels(const morvend::imglib::MImage& mask, const QRect& part, void* out);

}  // namespace render
