// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One LZ4 block, the unit of compression of LZ4 chunks and of packed bitshuffle chunks.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace morvend::codec {

/// Unpacks one LZ4 block into exactly `to`; false when it is damaged. By liblz4. Thread: any.
bool lz4Block(std::span<const std::byte> packed, std::span<std::byte> to);

/// Memory around a block that may be touched too, which saves careful steps at its ends.
struct BlockMargins {
    std::size_t readable = 0;  ///< bytes after the packed ones
    std::size_t writable = 0;  ///< bytes after the unpacked ones; they are overwritten
};

/// Margins beyond these gain nothing.
inline constexpr BlockMargins UsefulMargins{128, 128};

/// lz4Block for the blocks of bit planes: long matches, few literals.
using UnpackLz4Planes = bool (*)(std::span<const std::byte> packed, std::span<std::byte> to,
                                 const BlockMargins& margins);

/// The fastest one of this processor, fetched once per chunk. It respects the targets of
/// hwy::SupportedTargets(), with which tests and benchmarks choose a slower one.
UnpackLz4Planes lz4PlanesUnpacker();

/// Packs one LZ4 block and appends it to `to` after its 4-byte length, big-endian. With
/// `mayStore`, a block that doesn't shrink is appended as it is.
void appendLz4Block(std::vector<std::byte>& to, std::span<const std::byte> block, bool mayStore);

}  // namespace morvend::codec
