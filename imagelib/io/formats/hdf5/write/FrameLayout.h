// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What all frames of a written series have in common.
#pragma once

#include "imagelib/image/Type.h"

#include <cstddef>

namespace morvend::imglib::hdf5 {

/// How frames are compressed. Deflate goes with a byte shuffle.
enum class Compression { None, Deflate, Lz4, BitshuffleLz4 };

/// Size and pixel type.
struct FrameLayout {
    int width = 0;
    int height = 0;
    datatypes::Type type = datatypes::NONE;
    std::size_t bits = 0;

    std::size_t bytes() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * (bits / 8);
    }
    bool operator==(const FrameLayout&) const = default;
};

}  // namespace morvend::imglib::hdf5
