// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte-offset packing of pixels: one-byte differences with escapes to wider steps.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace morvend::imglib {

/// How much of a packed stream was unpacked.
struct UnpackedPixels {
    std::size_t pixels = 0;  ///< fewer than requested when the stream ends early
    std::size_t bytes = 0;   ///< read from the stream
};

/// Unpacks pixels of 1, 2, 4 or 8 bytes into `pixels`, a whole number of them (asserted).
///
/// The stream holds the difference of each pixel from the one before, the first from 0, as a signed
/// byte; the byte 0x80 announces a little-endian difference of 2 bytes instead, 0x8000 there one of
/// 4 and 0x80000000 there one of 8 bytes (x-CBF_BYTE_OFFSET of the imgCIF dictionary). Sums wrap
/// around at the width of the pixel, so that one function serves signed and unsigned pixels.
/// Never reads or writes outside the spans, whatever the stream holds. Thread: any.
UnpackedPixels unpackByteOffset(std::span<const std::byte> packed, std::size_t pixelBytes,
                                std::span<std::byte> pixels);

/// The same in plain C++, one pixel at a time: the reference for tests.
UnpackedPixels unpackByteOffsetPlain(std::span<const std::byte> packed, std::size_t pixelBytes,
                                     std::span<std::byte> pixels);

/// Packs pixels. Differences of 1- and 2-byte pixels are exact, those of wider ones wrap around at
/// the width of the pixel, as with other writers: readers that sum in 32 bits know no escape to 8
/// bytes, and it is hardly ever needed then.
std::vector<std::byte> packByteOffset(std::span<const std::byte> pixels, std::size_t pixelBytes,
                                      bool isSigned);

}  // namespace morvend::imglib
