// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// ColorMapper: pixels and mask of any type go through the loops for 32-bit pixels.
#include "imagelib/display/ColorMapper.h"

#include "imagelib/display/ColorKernel.h"
#include "imagelib/display/DisplayValue.h"
#include "imagelib/image/Assert.h"
#include "imagelib/image/MImage.h"

#include <algorithm>
#include <array>

namespace morvend::imglib {

namespace {

using Rule = std::variant<ColorRule<int>, ColorRule<unsigned int>, ColorRule<float>>;

Rule makeRule(const ColorSettings& settings, datatypes::Type type)
{
    switch (type) {
    case datatypes::FLOAT:
        return ColorRule<float>(settings);
    case datatypes::UINT:
        return ColorRule<unsigned int>(settings);
    default:
        return ColorRule<int>(settings);
    }
}

constexpr std::size_t blockSize = 1024;

template <class T>
using Block = std::array<T, blockSize>;

template <class T>
const T* displayPixels(const MImage& image, std::size_t first, std::size_t size, Block<T>& block)
{
    return datatypes::dispatchPixelType(
        image.type(), image.typeBits(), [&]<class From>() -> const T* {
            const From* pixels = image.pixels<From>() + first;
            if constexpr (std::is_same_v<From, T>) {
                return pixels;
            } else {
                std::transform(pixels, pixels + size, block.begin(), displayValue<T, From>);
                return block.data();
            }
        });
}

const std::uint32_t* maskPixels(const MImage& mask, std::size_t first, std::size_t size,
                                Block<std::uint32_t>& block)
{
    return datatypes::dispatchPixelType(
        mask.type(), mask.typeBits(), [&]<class From>() -> const std::uint32_t* {
            const From* pixels = mask.pixels<From>() + first;
            if constexpr (std::is_same_v<From, std::uint32_t>) {
                return pixels;
            } else {
                std::transform(pixels, pixels + size, block.begin(), maskValue<From>);
                return block.data();
            }
        });
}

/// In blocks that stay in the first cache while they are converted and coloured.
template <class T>
void colorBlocks(const ColorRule<T>& rule, const MImage& image, const MImage* mask,
                 std::size_t first, std::span<std::uint32_t> colors)
{
    Block<T> pixelBlock;
    Block<std::uint32_t> maskBlock;
    for (std::size_t begin = 0; begin < colors.size(); begin += blockSize) {
        const std::size_t size = std::min(blockSize, colors.size() - begin);
        const T* pixels = displayPixels(image, first + begin, size, pixelBlock);
        const std::uint32_t* flags =
            mask ? maskPixels(*mask, first + begin, size, maskBlock) : nullptr;
        colorPixels(rule, pixels, flags, &colors[begin], size);
    }
}

}  // namespace

ColorMapper::ColorMapper(const ColorSettings& settings, datatypes::Type type)
    : _rule(makeRule(settings, type))
{}

void ColorMapper::run(std::span<std::uint32_t> colors, const MImage& image, const MImage* mask,
                      std::size_t first) const
{
    assert(first <= image.size() && colors.size() <= image.size() - first);
    assert(!mask || mask->size() == image.size());
    std::visit([&](const auto& rule) { colorBlocks(rule, image, mask, first, colors); }, _rule);
}

}  // namespace morvend::imglib
