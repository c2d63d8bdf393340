// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the bits of good pixels to vector masks, for each instruction set.

// Included once for each instruction set.
#if defined(TARVIK_GOODLANES_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_GOODLANES_INL
#undef TARVIK_GOODLANES_INL
#else
#define TARVIK_GOODLANES_INL
#endif

#include <cstdint>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tarvik_simd::HWY_NAMESPACE {

/// The lanes whose pixels from `at` on are good; `at` is a multiple of the number of lanes.
template <class D>
HWY_INLINE auto goodLanes(D d, const std::uint8_t* bits, std::size_t at)
{
    if constexpr (hwy::HWY_NAMESPACE::MaxLanes(D()) >= 8) {
        return hwy::HWY_NAMESPACE::LoadMaskBits(d, bits + at / 8);
    } else {
        const std::uint8_t shifted[8] = {static_cast<std::uint8_t>(bits[at / 8] >> (at % 8))};
        return hwy::HWY_NAMESPACE::LoadMaskBits(d, shifted);
    }
}

}  // namespace tarvik_simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
