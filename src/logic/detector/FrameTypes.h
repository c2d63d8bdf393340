// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the start of a series and its frames bring, as it crosses between threads.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

/// The pixels of a frame with their width and height, without a header.
struct ImageData : morvend::imglib::MImage {
    using Packed = std::shared_ptr<const std::vector<std::byte>>;

    using MImage::MImage;
    ImageData() = default;
    ImageData(MImage image, Packed packed_ = {})
        : MImage(std::move(image))
        , packed(std::move(packed_))
    {}

    /// The same pixels as a chunk of the HDF5 filter bitshuffle+LZ4, if the detector sent them so.
    Packed packed;
};
/// What holds for all frames of a series.
using OptionalData = morvend::imglib::MBasicImageOptionalData<>;

/// A frame with the header of its series, whose mask is left out if it is of another size.
morvend::imglib::MImage withHeader(const ImageData& frame, const OptionalData& header);
