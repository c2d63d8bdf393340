// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/DisplayImage.h"

#include "gui/render/ParallelRows.h"
#include "gui/render/TextureFormat.h"
#include "imagelib/display/DisplayValue.h"
#include "logic/support/Assert.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace render {

namespace {

using morvend::imglib::MImage;

/// Calls convertRow(first, to) for each row of a part, `to` running through the output.
template <class To, class ConvertRow>
void forRows(const MImage& image, const QRect& part, void* out, ConvertRow&& convertRow)
{
    assert(QRect(0, 0, image.width(), image.height()).contains(part));
    const auto width = static_cast<std::size_t>(part.width());
    parallelRows(part.height(), width, [&](int row) {
        const auto y = static_cast<std::size_t>(part.y() + row);
        convertRow(y * static_cast<std::size_t>(image.width()) + static_cast<std::size_t>(part.x()),
                   static_cast<To*>(out) + width * static_cast<std::size_t>(row));
    });
}

template <class To>
void displayPixelsAs(const MImage& image, const QRect& part, void* out)
{
    static_assert(sizeof(To) == 4);
    morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class From>() {
        forRows<To>(image, part, out, [&](std::size_t first, To* to) {
            const From* from = image.pixels<From>() + first;
            std::transform(from, from + part.width(), to, morvend::imglib::displayValue<To, From>);
        });
    });
}

}  // namespace

DisplayImage::DisplayImage(const MImage& base)
    : _size(base.width(), base.height())
    , _kind(kindOf(base.type()))
    , _image(base)
{
    if (const auto& saturation = std::as_const(_image).optionalData().saturation_value())
        _saturation = *saturation;
    const auto& pixel_mask = _image.optionalData().pixel_mask();
    assert(pixel_mask);
    _mask = *pixel_mask;
    if (_mask.width() != _image.width() || _mask.height() != _image.height())
        _mask = MImage(_image, 0U);
}

void DisplayImage::letPixelsGo()
{
    _image = MImage();
    _mask = MImage();
}

void displayPixels(const MImage& image, const QRect& part, void* out)
{
    switch (kindOf(image.type())) {
    case PixelKind::Int:
        return displayPixelsAs<int>(image, part, out);
    case PixelKind::UInt:
        return displayPixelsAs<unsigned int>(image, part, out);
    case PixelKind::Float:
        return displayPixelsAs<float>(image, part, out);
    }
}

void maskPixels(const MImage& mask, const QRect& part, void* out)
{
    morvend::datatypes::dispatchPixelType(mask.type(), mask.typeBits(), [&]<class From>() {
        forRows<std::uint8_t>(mask, part, out, [&](std::size_t first, std::uint8_t* to) {
            const From* from = mask.pixels<From>() + first;
            std::transform(from, from + part.width(), to, [](From value) {
                return static_cast<std::uint8_t>(morvend::imglib::maskValue(value));
            });
        });
    });
}

}  // namespace render
