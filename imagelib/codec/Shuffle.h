// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte shuffle, HDF5 filter 2: all first bytes of the elements, then all second bytes, and so on.
#pragma once

#include <cstddef>
#include <span>

namespace morvend::codec {

/// Puts the elements together again. Bytes after the last whole element are copied as they are.
/// `shuffled` and `elements` have equal size (asserted) and don't overlap; elementSize >= 1.
void byteUnshuffle(std::span<const std::byte> shuffled, std::size_t elementSize,
                   std::span<std::byte> elements);

/// The inverse of byteUnshuffle.
void byteShuffle(std::span<const std::byte> elements, std::size_t elementSize,
                 std::span<std::byte> shuffled);

}  // namespace morvend::codec
