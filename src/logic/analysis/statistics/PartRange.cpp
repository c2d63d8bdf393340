// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/analysis/statistics/PartRange.h"

#include "imagelib/image/GapValues.h"
#include "imagelib/image/MaskBits.h"
#include "imagelib/image/PixelTypes.h"
#include "imagelib/image/SortPixels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

namespace {

using morvend::datatypes::dispatchPixelType;
using morvend::imglib::MImage;
using morvend::imglib::MRect;

/// The pixels of a part that is in the image.
MImage cut(const MImage& image, const MRect& part)
{
    MImage pixels(part.width(), part.height(), image.type(), image.typeBits());
    const std::size_t bytes = image.typeBits() / 8;
    const auto length = static_cast<std::size_t>(part.width()) * bytes;
    const auto stride = static_cast<std::size_t>(image.width()) * bytes;
    const auto* from = static_cast<const std::byte*>(image.cdata()) +
                       static_cast<std::size_t>(part.top()) * stride +
                       static_cast<std::size_t>(part.left()) * bytes;
    auto* to = static_cast<std::byte*>(pixels.data());
    for (int y = 0; y < part.height(); ++y, to += length, from += stride)
        std::memcpy(to, from, length);
    return pixels;
}

/// Moves the good intensities to the front of an image.
/// @returns their number
template <class T>
std::size_t gather(MImage& image, const MImage& mask)
{
    const MImage gaps = gapMask(image);
    const auto* const gap = gaps.empty() ? nullptr : gaps.pixels<unsigned char>();
    return dispatchPixelType(mask.type(), mask.typeBits(), [&]<class M>() {
        const M* const marks = mask.pixels<M>();
        T* const pixels = static_cast<T*>(image.data());
        T* end = pixels;
        for (std::size_t i = 0; i < image.size(); ++i) {
            const T value = pixels[i];
            bool good = maskrule::good(marks[i]) && !(gap && gap[i] != 0);
            if constexpr (std::is_floating_point_v<T>)
                good = good && std::isfinite(value);
            *end = value;
            end += good;
        }
        return static_cast<std::size_t>(end - pixels);
    });
}

}  // namespace

std::optional<ContrastLevels> contrastLevelsOfPart(const MImage& image, const MImage& mask,
                                                   const MRect& part, const ContrastRange& range)
{
    const int left = std::max(part.left(), 0);
    const int top = std::max(part.top(), 0);
    const MRect inside(left, top, std::min(part.right(), image.width()) - left,
                       std::min(part.bottom(), image.height()) - top);
    if (inside.width() <= 0 || inside.height() <= 0)
        return {};
    MImage pixels = cut(image, inside);
    return dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        const auto count = static_cast<unsigned int>(gather<T>(pixels, cut(mask, inside)));
        T* const values = static_cast<T*>(pixels.data());
        morvend::image::sortPixels(values, count);
        return contrastLevels(
            RankedPixels{count, std::is_floating_point_v<T>,
                         [=](unsigned int rank) { return static_cast<double>(values[rank]); }},
            range);
    });
}
