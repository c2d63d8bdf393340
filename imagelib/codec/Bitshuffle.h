// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bit shuffle with an optional compression of its blocks, HDF5 filter 32008.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace morvend::codec {

/// What follows the bit shuffle; the values are those of cd_values[4].
enum class BlockPacking : unsigned { None = 0, Lz4 = 2, Zstd = 3 };

/// Elements of a block when the file leaves the choice to the filter: 8 KiB, in multiples of 8, at
/// least 128.
std::size_t defaultBlockElements(std::size_t elementSize);

/// Decodes a chunk into exactly decoded.size() bytes, by up to `threads` threads.
///
/// With a packing the stored bytes begin with an 8-byte decoded length and a 4-byte block length in
/// bytes (big-endian), then each block follows with a 4-byte stored length; without packing there
/// is no head, and blocks have `blockElements` elements (0: the default). The last block is
/// shortened to a multiple of 8 elements, the rest (fewer than 8) follows as it is. Within a block
/// of n elements each bit of the element has n / 8 bytes of its own, lowest bit first.
/// @throws MRuntimeException with the reason when any length disagrees or a block is damaged
void bitshuffleDecode(std::span<const std::byte> stored, std::size_t elementSize,
                      BlockPacking packing, std::size_t blockElements, std::span<std::byte> decoded,
                      unsigned threads = 1);

/// The inverse of bitshuffleDecode; packing None or Lz4, blockElements a multiple of 8 or 0.
/// @throws MBadParameterException when the size is no multiple of the element size
std::vector<std::byte> bitshuffleEncode(std::span<const std::byte> decoded, std::size_t elementSize,
                                        BlockPacking packing = BlockPacking::Lz4,
                                        std::size_t blockElements = 0);

}  // namespace morvend::codec
