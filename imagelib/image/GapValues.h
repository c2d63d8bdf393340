// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixel values that stand for no count, by which images without a pixel mask mark their gaps.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstdint>
#include <limits>
#include <type_traits>

namespace morvend::imglib {

/// Which values of a pixel type are marks (docs/display.md): -1 gap and -2 defective, if no other
/// value of the image is negative; as unsigned numbers of 32 and 64 bits these are the two largest;
/// and the largest value of types in which it is no plausible count, beyond which floating ones
/// have infinity, as of a division by a flat field of 0. The types bool and char have none.
template <class T>
struct GapRule {
    static constexpr bool Plain = std::is_same_v<T, bool> || std::is_same_v<T, char>;
    static constexpr bool Negatives = !Plain && std::is_signed_v<T>;
    static constexpr bool Top = !Plain && (std::is_unsigned_v<T> || sizeof(T) >= 4);
    static constexpr T Largest = std::numeric_limits<T>::max();
    /// From here on values are marks.
    static constexpr T FirstTop =
        std::is_unsigned_v<T> && sizeof(T) >= 4 ? static_cast<T>(Largest - 1) : Largest;
};

/// The mask of the marks in an image, of 8 bits: 1 for a gap, 3 (gap and defective) for a defective
/// pixel. Empty where the image has none. The largest value of 8 and 16 bits is a count if the
/// header's saturation value says so. Thread: any. Cost: one pass over the pixels, two with marks.
MImage gapMask(const MImage& image);

/// The mask that an image is shown and computed under: its own, if it has one of its size, else
/// gapMask(). Thread: any.
MImage maskOrGaps(const MImage& image);

/// True if each pixel marked by a mask of gapMask() has the value of its mark in an image of the
/// same size. Cost: reads the mask and the marked pixels of the image.
bool marksAreIn(const MImage& mask, const MImage& image);

}  // namespace morvend::imglib
