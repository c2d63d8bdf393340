// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Thumbnails of masks, made once for each mask.
#pragma once

#include "imagelib/image/MImage.h"

#include <array>
#include <cstdint>

/// Remembers the thumbnails of the last masks by the identity of their pixels: a series has one
/// mask, or two when part of its images come from a cache. Thread: one at a time.
class MaskThumbnails {
public:
    using MImage = morvend::imglib::MImage;

    /// The thumbnail of a mask; the same object for the same mask.
    MImage of(const MImage& mask);

private:
    struct Known {
        bool shows(const MImage& mask) const;

        std::uint64_t identity = 0;
        int width = 0;
        int height = 0;
        morvend::datatypes::Type type = morvend::datatypes::NONE;
        std::size_t bits = 0;
        MImage thumbnail;
    };
    std::array<Known, 2> _known;  // the most recently used first
};
