// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Counts bytes two at a time.
#pragma once

#include "imagelib/image/PixelBuffer.h"

#include <array>
#include <cstdint>

/// How often each byte occurs. Two tables over pairs of bytes, 512 KiB from the pool.
class PairCounts {
public:
    PairCounts();
    /// Counts `size` bytes and enough zero bytes after them, which it writes, to end at a multiple
    /// of 8.
    void add(std::uint8_t* bytes, std::size_t size);
    std::array<unsigned int, 256> counts() const;

private:
    morvend::image::PixelBufferPtr _memory;
    std::uint32_t* _even;
    std::uint32_t* _odd;
};
