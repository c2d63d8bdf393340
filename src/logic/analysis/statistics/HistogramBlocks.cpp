// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector steps of the histogram, for each instruction set.
#include "logic/analysis/statistics/HistogramBlocks.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/statistics/HistogramBlocks.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

#include "logic/analysis/statistics/GoodLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace histogramblocks::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
using tarvik_simd::HWY_NAMESPACE::goodLanes;

template <class T>
HWY_INLINE std::size_t encodeBlock(const T* pixels, const std::uint8_t* bits, std::size_t count,
                                   Lane<T> base, std::uint8_t* codes, Lane<T>* others)
{
    const hn::ScalableTag<Lane<T>> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const hn::RebindToSigned<decltype(d)> di;
    const hn::Rebind<std::uint8_t, decltype(d)> dcode;
    const hn::Rebind<T, decltype(d)> dt;
    const auto from = hn::Set(d, base);
    std::size_t found = 0;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        __builtin_prefetch(reinterpret_cast<const char*>(pixels + i) + 4096);
        auto value = from;
        if constexpr (sizeof(T) == 4)
            value = hn::LoadU(d, pixels + i);
        else
            value = hn::PromoteTo(d, hn::LoadU(dt, pixels + i));
        const auto good = goodLanes(d, bits, i);
        const auto distance = hn::BitCast(du, hn::Sub(value, from));
        const auto inside = hn::RebindMask(d, hn::Eq(hn::ShiftRight<8>(distance), hn::Zero(du)));
        const auto coded = hn::IfThenElseZero(hn::RebindMask(du, hn::And(good, inside)), distance);
        hn::StoreU(hn::DemoteTo(dcode, hn::BitCast(di, coded)), dcode, codes + i);
        const auto outside = hn::AndNot(inside, good);
        if (!hn::AllFalse(d, outside))
            found += hn::CompressStore(value, outside, d, others + found);
    }
    return found;
}

std::size_t encode8(const unsigned char* pixels, const std::uint8_t* bits, std::size_t count,
                    int base, std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
std::size_t encode16(const unsigned short* pixels, const std::uint8_t* bits, std::size_t count,
                     int base, std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
std::size_t encodeShort(const short* pixels, const std::uint8_t* bits, std::size_t count, int base,
                        std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
std::size_t encode32(const unsigned int* pixels, const std::uint8_t* bits, std::size_t count,
                     unsigned int base, std::uint8_t* codes, unsigned int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
std::size_t encodeInt(const int* pixels, const std::uint8_t* bits, std::size_t count, int base,
                      std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}

void partBlock(const float* pixels, const std::uint8_t* bits, std::size_t count, FloatParts& parts)
{
    const hn::ScalableTag<float> d;
    const auto lower = hn::Set(d, parts.lower);
    const auto upper = hn::Set(d, parts.upper);
    FloatParts to = parts;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        __builtin_prefetch(pixels + i + 1024);
        const auto value = hn::LoadU(d, pixels + i);
        const auto good = goodLanes(d, bits, i);
        // A NaN is on neither side.
        const auto below = hn::And(good, hn::Lt(value, lower));
        const auto above = hn::AndNot(below, hn::And(good, hn::Ge(value, upper)));
        const auto binned = hn::And(good, hn::And(hn::Ge(value, lower), hn::Lt(value, upper)));
        if (!hn::AllFalse(d, above))
            to.aboveCount += hn::CompressStore(value, above, d, to.above + to.aboveCount);
        if (!hn::AllFalse(d, below))
            to.belowCount += hn::CompressStore(value, below, d, to.below + to.belowCount);
        if (!hn::AllFalse(d, binned))
            to.binnedCount += hn::CompressStore(value, binned, d, to.binned + to.binnedCount);
    }
    parts = to;
}

}  // namespace histogramblocks::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace histogramblocks {

HWY_EXPORT(encode8);
HWY_EXPORT(encode16);
HWY_EXPORT(encodeShort);
HWY_EXPORT(encode32);
HWY_EXPORT(encodeInt);
HWY_EXPORT(partBlock);

template <>
std::size_t encode(const unsigned char* pixels, const std::uint8_t* bits, std::size_t count,
                   int base, std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encode8)(pixels, bits, count, base, codes, others);
}
template <>
std::size_t encode(const unsigned short* pixels, const std::uint8_t* bits, std::size_t count,
                   int base, std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encode16)(pixels, bits, count, base, codes, others);
}
template <>
std::size_t encode(const short* pixels, const std::uint8_t* bits, std::size_t count, int base,
                   std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encodeShort)(pixels, bits, count, base, codes, others);
}
template <>
std::size_t encode(const unsigned int* pixels, const std::uint8_t* bits, std::size_t count,
                   unsigned int base, std::uint8_t* codes, unsigned int* others)
{
    return HWY_DYNAMIC_DISPATCH(encode32)(pixels, bits, count, base, codes, others);
}
template <>
std::size_t encode(const int* pixels, const std::uint8_t* bits, std::size_t count, int base,
                   std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encodeInt)(pixels, bits, count, base, codes, others);
}

void part(const float* pixels, const std::uint8_t* bits, std::size_t count, FloatParts& parts)
{
    HWY_DYNAMIC_DISPATCH(partBlock)(pixels, bits, count, parts);
}

}  // namespace histogramblocks
#endif
