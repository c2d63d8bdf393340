// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Half precision by one product.
#include "imagelib/io/formats/base/HalfFloats.h"

#include "imagelib/image/Assert.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace morvend::imglib {

namespace {

/// Free of branches, so that the loop over it is vectorised: exponent and fraction are moved into
/// place and scaled by 2^112, which makes subnormal numbers right as well; infinities and NaN then
/// need their exponent filled up.
std::uint32_t widened(std::uint16_t half)
{
    const std::uint32_t sign = std::uint32_t(half & 0x8000u) << 16;
    const std::uint32_t magnitude = half & 0x7fffu;
    const float scaled = std::bit_cast<float>(magnitude << 13) * 0x1p112f;
    const std::uint32_t special = magnitude >= 0x7c00u ? 0x7f800000u : 0u;
    return sign | special | std::bit_cast<std::uint32_t>(scaled);
}

template <bool Swapped>
void widenAll(const std::byte* from, std::size_t count, std::byte* to)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint16_t half;
        std::memcpy(&half, from + 2 * i, 2);
        const std::uint32_t single = widened(Swapped ? __builtin_bswap16(half) : half);
        std::memcpy(to + 4 * i, &single, 4);
    }
}

}  // namespace

void widenHalfFloats(std::span<const std::byte> halves, bool swapped, std::byte* target)
{
    assert(halves.size() % 2 == 0);
    (swapped ? widenAll<true> : widenAll<false>)(halves.data(), halves.size() / 2, target);
}

}  // namespace morvend::imglib
