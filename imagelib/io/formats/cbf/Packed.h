// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packing of pixels in blocks of equally wide differences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace morvend::imglib {

struct PackedLayout {
    bool version2 = false;              ///< x-CBF_PACKED_V2: more widths, longer block heads
    bool flat = false;                  ///< differences only from the pixel before
    bool uncorrelatedSections = false;  ///< each section of a stack starts afresh
    bool isUnsigned = false;
    std::size_t fast = 0;
    std::size_t second = 0;
};

/// The most pixels that a stream can hold, for a bound on memory before it is unpacked.
std::uint64_t mostPackedPixels(std::span<const std::byte> packed);

/// Unpacks x-CBF_PACKED and x-CBF_PACKED_V2 of the imgCIF dictionary: a head of 32 bytes, then
/// blocks, each with the logarithm of its number of pixels, the width of their differences in bits,
/// and the differences, lowest bit first.
/// @param layout      of more than one column, or of one row, unless flat
/// @param pixelBytes  1, 2 or 4
/// @returns the number of pixels unpacked, fewer than requested when the stream ends early
std::size_t unpackPacked(std::span<const std::byte> packed, const PackedLayout& layout,
                         std::size_t pixelBytes, std::span<std::byte> pixels);

}  // namespace morvend::imglib
