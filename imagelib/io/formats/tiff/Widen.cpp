// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bit by bit and half by half.
#include "imagelib/io/formats/tiff/Widen.h"

#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>

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

float fromHalf(std::uint16_t half)
{
    const std::uint32_t sign = static_cast<std::uint32_t>(half & 0x8000u) << 16;
    const std::uint32_t rest = half & 0x7fffu;
    if (rest >= 0x7c00u)  // infinity, not a number
        return std::bit_cast<float>(sign | 0x7f800000u | (rest & 0x3ffu) << 13);
    // Moved into the place of a float's bits the exponent is too small by 112, also for subnormal
    // numbers: a product with 2^112 is exact.
    const float magnitude = std::bit_cast<float>(rest << 13) * 0x1p112f;
    return std::bit_cast<float>(sign | std::bit_cast<std::uint32_t>(magnitude));
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

void widenHalfFloats(std::span<const std::byte> halves, float* target)
{
    for (std::size_t i = 0; i < halves.size() / 2; ++i) {
        std::uint16_t half;
        std::memcpy(&half, halves.data() + 2 * i, sizeof half);
        target[i] = fromHalf(half);
    }
}

}  // namespace morvend::imglib::tiff
