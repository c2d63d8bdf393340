// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The chunk format of the HDF5 filter 32004: a head of two lengths, then LZ4 blocks.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace morvend::codec {

/// Default length of a block in bytes; chunks that are smaller are one block.
inline constexpr std::size_t Lz4BlockBytes = std::size_t(1) << 30;

/// Decodes a chunk into exactly decoded.size() bytes, by up to `threads` threads.
///
/// Layout, all lengths big-endian: 8 bytes decoded length, 4 bytes block length, then for each
/// block 4 bytes stored length and the block; stored length equal to the block's own: not packed.
/// @throws MRuntimeException with the reason when any length disagrees or a block is damaged
void lz4Decode(std::span<const std::byte> stored, std::span<std::byte> decoded,
               unsigned threads = 1);

/// The inverse of lz4Decode. blockBytes from 1 to Lz4BlockBytes.
std::vector<std::byte> lz4Encode(std::span<const std::byte> decoded,
                                 std::size_t blockBytes = Lz4BlockBytes);

}  // namespace morvend::codec
