// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A few numbers about all pixels of an image.
#pragma once

#include "bin/image/ImageNumber.h"
#include "imagelib/image/MImage.h"

#include <cstddef>
#include <string>

namespace tarvik::tool {

/// Numbers over all pixels, whatever the mask says. Integers are exact; sums of floating pixels are
/// made in extended precision. One NaN among the pixels makes all three NaN.
struct ImageSummary {
    ImageNumber minimum;
    ImageNumber maximum;
    ImageNumber sum;

    /// @throws MNotImplementedException for an image without a pixel type, such as the empty one
    static ImageSummary of(const morvend::imglib::MImage& image);
};

/// Number of pixels that are not 0.
std::size_t countNonZero(const morvend::imglib::MImage& image);

/// The value of the pixel at (x, y), which must be in the image.
ImageNumber pixelValue(const morvend::imglib::MImage& image, int x, int y);

/// SHA-256 of the pixel bytes, row by row, little-endian, in hexadecimal digits.
std::string pixelDigest(const morvend::imglib::MImage& image);

}  // namespace tarvik::tool
