// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The image that a view shows.
#pragma once

#include "gui/render/PixelKind.h"
#include "imagelib/image/MImage.h"

#include <QRect>
#include <QSize>

#include <optional>

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

    bool empty() const { return _size.isEmpty(); }
    QSize size() const { return _size; }
    PixelKind kind() const { return _kind; }
    /// From this intensity on a pixel is saturated, where the header says so.
    std::optional<int> saturation() const { return _saturation; }

    /// Lets go of image and mask; all of the above stays.
    void letPixelsGo();
    bool hasPixels() const { return !_image.empty(); }
    // Those that it has:
    const MImage& image() const { return _image; }
    const MImage& mask() const { return _mask; }

private:
    QSize _size;
    PixelKind _kind = PixelKind::Int;
    std::optional<int> _saturation;
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
