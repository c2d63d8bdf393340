// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reduced images in which no bright pixel is lost.
#pragma once

#include "imagelib/image/MImage.h"

namespace morvend::imglib {

/// An image of the largest pixel of each block of `side` times `side` pixels, counted from the
/// first pixel of the image; blocks at the right and lower border may be smaller. A pixel that the
/// mask excludes (bits 31) never stands for a good one: a block of such pixels only becomes the
/// first of them, with its mask. NaN is below all numbers, and comes out as the lowest value. Of
/// the header the saturation value is kept; the pixel mask has 8 bits. Thread: any.
/// @param mask  null, or of the image's size
MImage blockMaxima(const MImage& image, const MImage* mask, int side);

/// The two that views show below 1:1.
struct BlockMaxima {
    MImage halves;    ///< of blocks of 2 x 2 pixels
    MImage quarters;  ///< of 4 x 4

    static BlockMaxima of(const MImage& image, const MImage* mask);
};

}  // namespace morvend::imglib
