// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packing of pixels as differences of 2 to 32 bits, whose width lasts until it is changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace morvend::imglib {

/// The most pixels that a stream can hold, for a bound on memory before it is unpacked.
std::uint64_t mostNibbleOffsetPixels(std::span<const std::byte> packed);

/// Unpacks x-CBF_NIBBLE_OFFSET of the imgCIF dictionary (docs/formats/cbf.md).
/// @param pixelBytes  1, 2, 4 or 8; sums wrap around at that width
/// @returns the number of pixels unpacked, fewer than requested when the stream ends early
/// @throws MRuntimeException with the reason for codes that are not read
std::size_t unpackNibbleOffset(std::span<const std::byte> packed, std::size_t pixelBytes,
                               std::span<std::byte> pixels);

}  // namespace morvend::imglib
