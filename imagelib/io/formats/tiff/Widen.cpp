// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bit by bit.
#include "imagelib/io/formats/tiff/Widen.h"

#include "imagelib/image/Assert.h"

#include <cstdint>

namespace morvend::imglib::tiff {

namespace {

template <class T>
void unpackTo(std::span<const std::byte> packed, std::size_t bits, std::size_t pixels, T* target)
{
    std::uint32_t window = 0;  // the last bits read, the newest ones lowest
    std::size_t held = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < pixels; ++i) {
        while (held < bits) {
            window = window << 8 | std::to_integer<std::uint32_t>(packed[next++]);
            held += 8;
        }
        held -= bits;
        target[i] = static_cast<T>(window >> held & ((1u << bits) - 1));
    }
}

}  // namespace

void unpackBits(std::span<const std::byte> packed, std::size_t bits, std::size_t pixels,
                void* target)
{
    assert(bits >= 1 && bits <= 15 && packed.size() * 8 >= bits * pixels);
    if (bits <= 8)
        unpackTo(packed, bits, pixels, static_cast<std::uint8_t*>(target));
    else
        unpackTo(packed, bits, pixels, static_cast<std::uint16_t*>(target));
}

}  // namespace morvend::imglib::tiff
