// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Moves selected lanes of a vector together, for each instruction set. Always in registers:
// processors of one maker take a hundred cycles for an AVX-512 instruction that compresses to
// memory.

// Included once for each instruction set.
#if defined(TARVIK_PACKLANES_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_PACKLANES_INL
#undef TARVIK_PACKLANES_INL
#else
#define TARVIK_PACKLANES_INL
#endif

#include "imagelib/image/LaneOrders.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tarvik_simd::HWY_NAMESPACE {

/// Bit i: lane i of a mask of at most 16 lanes.
template <class D>
HWY_INLINE std::size_t laneBits(D d, hwy::HWY_NAMESPACE::Mask<D> mask)
{
    std::uint8_t bytes[8] = {};
    hwy::HWY_NAMESPACE::StoreMaskBits(d, mask, bytes);
    if constexpr (hwy::HWY_NAMESPACE::MaxLanes(D()) <= 8)
        return bytes[0];
    std::uint16_t bits = 0;
    std::memcpy(&bits, bytes, sizeof bits);
    return bits;
}

#if HWY_TARGET != HWY_SCALAR

/// The lanes whose bit is set, in order, then the others in order; at most 8 lanes of 4 or 8 bytes.
template <class D>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<D> orderLanes(D d, hwy::HWY_NAMESPACE::Vec<D> v,
                                                 std::size_t bits)
{
    namespace hn = hwy::HWY_NAMESPACE;
    constexpr std::size_t words = sizeof(hn::TFromD<D>) / 4;
    const hn::Repartition<std::uint32_t, D> dw;
    const hn::Rebind<std::uint8_t, decltype(dw)> d8;
    const auto* order = laneorders::SetFirst<hn::MaxLanes(D()), words>[bits].data();
    const auto indices = hn::IndicesFromVec(dw, hn::PromoteTo(dw, hn::LoadU(d8, order)));
    return hn::BitCast(d, hn::TableLookupLanes(hn::BitCast(dw, v), indices));
}

/// Stores a whole vector that begins with the lanes of the mask, in order. Returns their number.
template <class D>
HWY_INLINE std::size_t packStore(D d, hwy::HWY_NAMESPACE::Vec<D> v,
                                 hwy::HWY_NAMESPACE::Mask<D> mask,
                                 hwy::HWY_NAMESPACE::TFromD<D>* to)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const std::size_t bits = laneBits(d, mask);
#if HWY_TARGET <= HWY_AVX3
    hn::StoreU(hn::Compress(v, mask), d, to);
#else
    hn::StoreU(orderLanes(d, v, bits), d, to);
#endif
    return static_cast<std::size_t>(std::popcount(bits));
}

/// The lanes of the mask, `count` of them, in order, then the others in order.
template <class D>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<D> partLanes(D d, hwy::HWY_NAMESPACE::Vec<D> v,
                                                hwy::HWY_NAMESPACE::Mask<D> mask, std::size_t bits,
                                                [[maybe_unused]] std::size_t count)
{
    namespace hn = hwy::HWY_NAMESPACE;
    if constexpr (hn::MaxLanes(D()) > 8) {
        const hn::RebindToUnsigned<D> du;
        const auto rotation =
            hn::IndicesFromVec(d, hn::LoadU(du, laneorders::Rotation.data() + 16 - count));
        const auto others = hn::Compress(v, hn::Not(mask));
        return hn::IfThenElse(hn::FirstN(d, count), hn::Compress(v, mask),
                              hn::TableLookupLanes(others, rotation));
    } else {
        return orderLanes(d, v, bits);
    }
}

#else

template <class T>
HWY_INLINE std::size_t packStore(hwy::HWY_NAMESPACE::Sisd<T> d, hwy::HWY_NAMESPACE::Vec1<T> v,
                                 hwy::HWY_NAMESPACE::Mask1<T> mask, T* to)
{
    hwy::HWY_NAMESPACE::StoreU(v, d, to);
    return laneBits(d, mask);
}

#endif

}  // namespace tarvik_simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
