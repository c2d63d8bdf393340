// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Search for marks, and the masks made from them.
#include "imagelib/image/GapValues.h"

#include "imagelib/image/PixelTypes.h"

#include <algorithm>
#include <type_traits>

namespace morvend::imglib {

namespace {

constexpr std::uint8_t Gap = 1;
constexpr std::uint8_t Defective = 3;

template <class T>
std::uint8_t markOf(T value, bool negatives, bool top)
{
    unsigned int mark = 0;
    if constexpr (GapRule<T>::Negatives) {
        const unsigned int gap = value == T(-1) ? Gap : 0;
        const unsigned int defective = value == T(-2) ? Defective : 0;
        mark = negatives ? gap | defective : 0;
    }
    if constexpr (GapRule<T>::Top) {
        const unsigned int gap = value == GapRule<T>::Largest ? Gap : 0;
        const unsigned int defective =
            value >= GapRule<T>::FirstTop && value != GapRule<T>::Largest ? Defective : 0;
        mark |= top ? gap | defective : 0;
    }
    return static_cast<std::uint8_t>(mark);
}

/// True if the largest value of a narrow type is a count that the detector can reach.
template <class T>
bool reachesTop(const MImage& image)
{
    const auto& saturation = image.optionalData().saturation_value();
    if constexpr (GapRule<T>::Top && sizeof(T) <= 2)
        return saturation && *saturation == static_cast<int>(GapRule<T>::Largest);
    else
        return false;
}

/// The kinds of marks in an image.
struct Kinds {
    bool negatives = false;
    bool top = false;
};

/// False if no pixel is negative or the largest number: in few operations, as hardly any is.
template <class T>
bool mayHoldMarks(const T* pixels, std::size_t size)
{
    if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
        using Bits = std::make_unsigned_t<T>;
        Bits any = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const Bits bits = static_cast<Bits>(pixels[i]);
            any = static_cast<Bits>(any | bits | static_cast<Bits>(bits + 1));
        }
        return static_cast<T>(any) < 0;
    }
    return true;
}

template <class T>
Kinds kindsIn(const T* pixels, std::size_t size)
{
    // No branches: the loop is vectorised.
    unsigned int marks = 0;
    unsigned int others = 0;
    unsigned int top = 0;
    constexpr std::size_t Block = 256;
    for (std::size_t begin = 0; begin < size; begin += Block) {
        const std::size_t count = std::min(Block, size - begin);
        if (!mayHoldMarks(pixels + begin, count))
            continue;
        for (std::size_t i = begin; i < begin + count; ++i) {
            const T value = pixels[i];
            if constexpr (GapRule<T>::Negatives) {
                const unsigned int mark = (value == T(-1)) | (value == T(-2));
                marks |= mark;
                others |= static_cast<unsigned int>(value < T(0)) & ~mark;
            }
            if constexpr (GapRule<T>::Top)
                top |= static_cast<unsigned int>(value >= GapRule<T>::FirstTop);
        }
    }
    return {marks != 0 && others == 0, top != 0};
}

}  // namespace

MImage gapMask(const MImage& image)
{
    return datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        MImage mask;
        if constexpr (GapRule<T>::Negatives || GapRule<T>::Top) {
            const T* const pixels = image.pixels<T>();
            Kinds kinds = kindsIn(pixels, image.size());
            kinds.top = kinds.top && !reachesTop<T>(image);
            if (kinds.negatives || kinds.top) {
                mask = MImage(image.width(), image.height(), datatypes::UINT, 8);
                std::transform(pixels, pixels + image.size(),
                               static_cast<std::uint8_t*>(mask.data()),
                               [&](T value) { return markOf(value, kinds.negatives, kinds.top); });
            }
        }
        return mask;
    });
}

MImage maskOrGaps(const MImage& image)
{
    const auto& mask = image.optionalData().pixel_mask();
    if (mask && !mask->empty() && mask->width() == image.width() &&
        mask->height() == image.height())
        return *mask;
    return image.empty() ? MImage() : gapMask(image);
}

bool marksAreIn(const MImage& mask, const MImage& image)
{
    const auto* const marks = mask.pixels<unsigned char>();
    return datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        const T* const pixels = image.pixels<T>();
        const bool top = !reachesTop<T>(image);
        for (std::size_t begin = 0; begin < mask.size(); begin += 64) {
            const std::size_t end = std::min(begin + 64, mask.size());
            unsigned int any = 0;
            for (std::size_t i = begin; i < end; ++i)
                any |= marks[i];
            for (std::size_t i = begin; any != 0 && i < end; ++i)
                if (marks[i] != 0 && markOf(pixels[i], true, top) != marks[i])
                    return false;
        }
        return true;
    });
}

}  // namespace morvend::imglib
