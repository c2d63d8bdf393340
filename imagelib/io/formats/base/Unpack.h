// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Unpacking of gzip, zlib and bzip2 streams in memory.
#pragma once

#include "imagelib/image/PixelBuffer.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace morvend::imglib {

enum class Packing { None, Gzip, Zlib, Bzip2 };

/// The packing that the first bytes of a file announce; never Zlib, whose mark is too weak.
Packing packingOf(std::string_view head);

/// The unpacked stream: the first `size` bytes of a pooled buffer.
struct Unpacked {
    image::PixelBufferPtr buffer;
    std::size_t size = 0;
    std::span<const std::byte> bytes() const { return {buffer->cdata(), size}; }
};

/// Unpacks a whole stream of unknown size; all members of a gzip or bzip2 file one after the other,
/// anything after the last one is padding. `name` goes into the messages.
/// @throws MRuntimeException naming the file when the stream is damaged, cut, or unpacks to more
/// than `most` bytes
Unpacked unpack(std::span<const std::byte> packed, Packing packing, std::uint64_t most,
                const std::string& name);

/// The first bytes of what a stream unpacks to, at most `count`; fewer when it is shorter or
/// damaged.
std::string unpackHead(std::span<const std::byte> packed, Packing packing, std::size_t count);

/// Unpacks into memory of the size that is expected.
/// @returns number of bytes unpacked
/// @throws MRuntimeException when the stream is damaged, cut, or unpacks to more than the target
std::size_t unpackInto(std::span<const std::byte> packed, Packing packing,
                       std::span<std::byte> target, const std::string& name);

}  // namespace morvend::imglib
