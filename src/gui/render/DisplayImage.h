// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The copy of an image that a view shows.
#pragma once

#include "gui/render/PixelKind.h"
#include "imagelib/image/MImage.h"

#include <QSize>

namespace render {

/// An image in one of three 32-bit pixel types, with its mask as 32-bit unsigned pixels: what goes
/// to the graphics card as it stands. Pixels are shared with the source where the types are equal.
class DisplayImage {
public:
    using MImage = morvend::imglib::MImage;

    /// No image.
    DisplayImage() = default;
    /// @param base  must carry a pixel mask (asserted), as every image does after the loader
    explicit DisplayImage(const MImage& base);

    bool empty() const { return _image.empty(); }
    QSize size() const { return {_image.width(), _image.height()}; }
    PixelKind kind() const { return _kind; }
    const MImage& image() const { return _image; }
    const MImage& mask() const { return _mask; }

    /// The kind that an image of a pixel type is shown as.
    static PixelKind kindOf(morvend::datatypes::Type type);

private:
    PixelKind _kind = PixelKind::Int;
    MImage _image;
    MImage _mask;
};

}  // namespace render
