// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Unpacking of gzip, zlib and bzip2 streams of unknown size into memory.
#pragma once

#include "imagelib/io/formats/base/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvend::imglib {

enum class Packing { None, Gzip, Zlib, Bzip2 };

/// The packing that the first bytes of a file announce; never Zlib, whose mark is too weak.
Packing packingOf(std::string_view head);

/// Unpacks a whole file, all members of a gzip or bzip2 file one after the other.
/// @throws MRuntimeException naming the file when the stream is damaged, ends early or unpacks to
/// more than `most` bytes
std::vector<std::byte> unpack(const ByteSource& file, Packing packing, std::uint64_t most);

/// The same for bytes in memory; `name` goes into the messages.
std::vector<std::byte> unpack(std::span<const std::byte> packed, Packing packing,
                              std::uint64_t most, const std::string& name);

}  // namespace morvend::imglib
