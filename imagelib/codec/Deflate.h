// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Whole zlib streams of known size, HDF5 filter 1.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace morvend::codec {

/// Unpacks one zlib stream, which must fill `unpacked` exactly. Bytes after the stream are
/// ignored.
/// @throws MRuntimeException with the reason
void inflateExactly(std::span<const std::byte> packed, std::span<std::byte> unpacked);

/// Packs into a zlib stream; `level` from 1 (fast) to 12 (small).
std::vector<std::byte> deflate(std::span<const std::byte> unpacked, int level = 6);

}  // namespace morvend::codec
