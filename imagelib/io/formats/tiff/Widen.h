// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Integers of a TIFF file that are narrower than any pixel type in memory.
#pragma once

#include <cstddef>
#include <span>

namespace morvend::imglib::tiff {

/// Unpacks one row of unsigned integers of 1 to 7 bits into bytes, of 9 to 15 bits into 16-bit
/// integers; the first pixel is in the highest bits of the first byte. `packed` holds all of
/// the row, `target` `pixels` values.
void unpackBits(std::span<const std::byte> packed, std::size_t bits, std::size_t pixels,
                void* target);

}  // namespace morvend::imglib::tiff
