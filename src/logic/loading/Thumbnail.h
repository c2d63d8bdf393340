// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reduced pictures of images and masks.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstddef>
#include <memory>

namespace thumbnail {

/// Most pixels on the longer side of a thumbnail.
inline constexpr int longestSide = 200;

/// An image of the size and pixel type of a thumbnail, with undefined pixels. The longer side gets
/// 200 pixels at most; smaller images keep their size.
/// @throws MNotImplementedException for no pixel type
morvend::imglib::MImage emptyThumbnail(const morvend::imglib::MImage& image);

/// The mean of each cell of pixels, truncated for integer types; masked pixels take part. Where
/// `hasNegatives` is false, negative pixels are marks: the first one in a cell becomes its value.
morvend::imglib::MImage ofImage(const morvend::imglib::MImage& image, bool hasNegatives);

/// The same in steps, for work that reads the pixels anyway and brings them into the cache.
/// The image outlives it unchanged.
class Builder {
public:
    /// @throws MNotImplementedException for no pixel type
    explicit Builder(const morvend::imglib::MImage& image);
    ~Builder();
    /// Processes the rows of cells that end before a pixel.
    void upTo(std::size_t end);
    /// Processes the rest. Call once.
    morvend::imglib::MImage finish(bool hasNegatives);

    class Work;

private:
    std::unique_ptr<Work> _work;
    morvend::imglib::MImage _empty;
};

/// The first mask pixel of each cell that is not 0, row by row, else 0: a single bad pixel survives
/// any reduction with all its bits.
morvend::imglib::MImage ofMask(const morvend::imglib::MImage& mask);

}  // namespace thumbnail
