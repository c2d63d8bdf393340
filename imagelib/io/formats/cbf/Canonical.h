// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packing of pixel differences in canonical Huffman codes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace morvend::imglib {

/// The most pixels that a stream can hold, for a bound on memory before it is unpacked.
std::uint64_t mostCanonicalPixels(std::span<const std::byte> packed);

/// Unpacks x-CBF_CANONICAL of the imgCIF dictionary.
/// @returns the number of pixels unpacked, fewer than requested when the stream ends early or holds
/// a code missing from its own table
std::size_t unpackCanonical(std::span<const std::byte> packed, std::size_t pixelBytes,
                            bool isUnsigned, std::span<std::byte> pixels);

}  // namespace morvend::imglib
