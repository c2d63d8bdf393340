// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The copy of an image that a view shows.
#include "gui/render/DisplayImage.h"

#include "logic/support/Assert.h"

namespace render {

namespace {

morvend::imglib::MImage converted(const morvend::imglib::MImage& image, PixelKind kind)
{
    switch (kind) {
    case PixelKind::Float:
        return image.asType<float>();
    case PixelKind::UInt:
        return image.asType<unsigned int>();
    case PixelKind::Int:
        break;
    }
    return image.asType<int>();
}

}  // namespace

DisplayImage::DisplayImage(const MImage& base)
    : _kind(kindOf(base.type()))
    , _image(converted(base, _kind))
{
    const auto& pixel_mask = _image.optionalData().pixel_mask();
    assert(pixel_mask);
    _mask = pixel_mask->asType<unsigned int>();
}

PixelKind DisplayImage::kindOf(morvend::datatypes::Type type)
{
    switch (type) {
    case morvend::datatypes::FLOAT:
        return PixelKind::Float;
    case morvend::datatypes::UINT:
        return PixelKind::UInt;
    default:
        return PixelKind::Int;
    }
}

}  // namespace render
