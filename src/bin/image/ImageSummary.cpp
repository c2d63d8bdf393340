// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One pass over the pixels for each of the numbers.
#include "bin/image/ImageSummary.h"

#include "imagelib/image/PixelTypes.h"

#include <openssl/evp.h>

#include <algorithm>
#include <bit>
#include <limits>

namespace tarvik::tool {

using morvend::datatypes::dispatchPixelType;
using morvend::imglib::MImage;

namespace {

static_assert(std::endian::native == std::endian::little, "pixels are digested as they lie");

struct Summarize {
    const MImage& image;

    template <class T>
    ImageSummary operator()() const
    {
        using Sum = std::conditional_t<std::is_floating_point_v<T>, long double, WideInteger>;
        const T* pixels = image.pixels<T>();
        T low = pixels[0];
        T high = pixels[0];
        Sum sum = 0;
        bool isNan = false;
        for (std::size_t i = 0; i < image.size(); ++i) {
            low = std::min(low, pixels[i]);
            high = std::max(high, pixels[i]);
            sum += Sum(pixels[i]);
            if constexpr (std::is_floating_point_v<T>)
                isNan |= pixels[i] != pixels[i];
        }
        if constexpr (std::is_floating_point_v<T>) {
            if (isNan)
                low = high = std::numeric_limits<T>::quiet_NaN();
            return {ImageNumber::ofPixel(low), ImageNumber::ofPixel(high),
                    ImageNumber(static_cast<double>(sum))};
        } else {
            return {ImageNumber::ofPixel(low), ImageNumber::ofPixel(high), ImageNumber(sum)};
        }
    }
};

struct CountNonZero {
    const MImage& image;

    template <class T>
    std::size_t operator()() const
    {
        const T* pixels = image.pixels<T>();
        return image.size() -
               static_cast<std::size_t>(std::count(pixels, pixels + image.size(), T(0)));
    }
};

struct ValueAt {
    const MImage& image;
    std::size_t position;

    template <class T>
    ImageNumber operator()() const
    {
        return ImageNumber::ofPixel(image.pixels<T>()[position]);
    }
};

}  // namespace

ImageSummary ImageSummary::of(const MImage& image)
{
    return dispatchPixelType(image.type(), image.typeBits(), Summarize{image});
}

std::size_t countNonZero(const MImage& image)
{
    return dispatchPixelType(image.type(), image.typeBits(), CountNonZero{image});
}

ImageNumber pixelValue(const MImage& image, int x, int y)
{
    const std::size_t position =
        std::size_t(y) * static_cast<std::size_t>(image.width()) + std::size_t(x);
    return dispatchPixelType(image.type(), image.typeBits(), ValueAt{image, position});
}

std::string pixelDigest(const MImage& image)
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(image.cdata(), image.dataSize(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw morvend::MRuntimeException("The SHA-256 of the pixels cannot be computed");
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text += "0123456789abcdef"[digest[i] >> 4];
        text += "0123456789abcdef"[digest[i] & 15];
    }
    return text;
}

}  // namespace tarvik::tool
