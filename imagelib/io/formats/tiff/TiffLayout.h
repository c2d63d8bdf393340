// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How the pixels of a TIFF page are stored.
#pragma once

#include "imagelib/image/Type.h"

#include <cstddef>
#include <cstdint>

namespace morvend::imglib::tiff {

class TiffHandle;

/// The checked values of one directory: one sample a pixel, a size that the file can hold.
struct TiffLayout {
    int width = 0;
    int height = 0;
    /// Pixel type of the image that is made; wider than the file's for 1 to 15 bits and for 16-bit
    /// floats.
    datatypes::Type type = datatypes::NONE;
    std::size_t typeBits = 0;
    /// Bits of a pixel in the file.
    std::size_t fileBits = 0;
    /// The file does not say whether its integers have a sign.
    bool signUntold = false;

    bool tiled = false;
    /// Size of a tile, or of a strip that is not the last one.
    int partWidth = 0;
    int partHeight = 0;
    /// Strips or tiles of the page.
    std::uint32_t parts = 0;
    /// Uncompressed, with bits in their natural order.
    bool plain = false;

    bool widened() const { return fileBits != typeBits; }
    /// Bytes of a row in the file that has this many pixels.
    std::size_t rowBytes(int pixels) const
    {
        return (static_cast<std::size_t>(pixels) * fileBits + 7) / 8;
    }
};

/// Reads and checks the directory that the handle has selected.
/// @throws MNotImplementedException naming what this program does not read (colours, a compression,
/// a number of bits), MRuntimeException when the size is impossible for the file
TiffLayout readLayout(const TiffHandle& handle);

}  // namespace morvend::imglib::tiff
