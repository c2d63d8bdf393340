// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Uncompressed pixels on their way from the file straight into the image.
#pragma once

#include "imagelib/io/formats/base/ByteSource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace morvend::imglib {

/// Swaps the byte order of every value in place. `bytes` is a whole number of values of
/// `valueBytes` (1, 2, 4 or 8; 1 does nothing).
void swapByteOrder(std::span<std::byte> bytes, std::size_t valueBytes);

/// The lowest of the values and 0.
std::int32_t lowestSigned(std::span<const std::int32_t> values);

/// Reads bytes into `target` and calls finish(piece) on each part of it while it is still in the
/// processor's cache; pieces are multiples of 8 bytes, except for the last one of the target.
/// @returns the bytes read, fewer than requested only at the end of the file
template <class Finish>
std::size_t readInPieces(const ByteSource& source, std::uint64_t offset,
                         std::span<std::byte> target, Finish&& finish)
{
    constexpr std::size_t Piece = std::size_t(256) << 10;
    std::size_t done = 0;
    while (done < target.size()) {
        const auto piece = target.subspan(done, std::min(Piece, target.size() - done));
        const std::size_t got = source.readSome(offset + done, piece.data(), piece.size());
        done += got;
        if (got < piece.size())
            break;
        finish(piece);
    }
    return done;
}

/// Reads pixels into `target` and swaps values of `swapBytes` bytes; 0 or 1 when the file is in
/// this machine's byte order. @returns the bytes read
std::size_t readPixels(const ByteSource& source, std::uint64_t offset, std::span<std::byte> target,
                       std::size_t swapBytes);

}  // namespace morvend::imglib
