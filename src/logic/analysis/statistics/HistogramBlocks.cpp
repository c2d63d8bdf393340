// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector steps of the histogram, for each instruction set.
#include "logic/analysis/statistics/HistogramBlocks.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/statistics/HistogramBlocks.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

#include "imagelib/image/PackLanes-inl.h"
#include "logic/analysis/statistics/GoodLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace histogramblocks::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
using tarvik_simd::HWY_NAMESPACE::goodLanes;
using tarvik_simd::HWY_NAMESPACE::packStore;

template <class T>
HWY_INLINE Encoded encodeBlock(const T* pixels, const std::uint8_t* bits, std::size_t count,
                               Lane<T> base, std::uint8_t* codes, Lane<T>* others)
{
    const hn::ScalableTag<Lane<T>> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const hn::RebindToSigned<decltype(d)> di;
    const hn::Rebind<std::uint8_t, decltype(d)> dcode;
    const hn::Rebind<T, decltype(d)> dt;
    const auto from = hn::Set(d, base);
    auto highest = hn::Zero(du);
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
        highest = hn::Max(highest, coded);
        hn::StoreU(hn::DemoteTo(dcode, hn::BitCast(di, coded)), dcode, codes + i);
        const auto outside = hn::AndNot(inside, good);
        if (!hn::AllFalse(d, outside))
            found += packStore(d, value, outside, others + found);
    }
    return {found, hn::GetLane(hn::MaxOfLanes(du, highest))};
}

Encoded encode8(const unsigned char* pixels, const std::uint8_t* bits, std::size_t count, int base,
                std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
Encoded encode16(const unsigned short* pixels, const std::uint8_t* bits, std::size_t count,
                 int base, std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
Encoded encodeShort(const short* pixels, const std::uint8_t* bits, std::size_t count, int base,
                    std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
Encoded encode32(const unsigned int* pixels, const std::uint8_t* bits, std::size_t count,
                 unsigned int base, std::uint8_t* codes, unsigned int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}
Encoded encodeInt(const int* pixels, const std::uint8_t* bits, std::size_t count, int base,
                  std::uint8_t* codes, int* others)
{
    return encodeBlock(pixels, bits, count, base, codes, others);
}

#if HWY_TARGET == HWY_SCALAR

void countAll(const std::uint8_t* codes, std::size_t count, unsigned int, unsigned int* counts)
{
    for (std::size_t i = 0; i < count; ++i)
        ++counts[codes[i]];
}

#else

void countAll(const std::uint8_t* codes, std::size_t count, unsigned int highest,
              unsigned int* counts)
{
    constexpr unsigned int Together = 8;
    constexpr std::size_t Part = 2048;  // lanes of one byte can count in vectors of 16
    const hn::ScalableTag<std::uint8_t> d;
    const hn::Repartition<std::uint64_t, decltype(d)> dsum;
    for (unsigned int first = 1; first <= highest; first += Together)
        for (std::size_t begin = 0; begin < count; begin += Part) {
            hn::Vec<decltype(d)> wanted[Together];
            hn::Vec<decltype(d)> found[Together];
#pragma GCC unroll 8
            for (unsigned int k = 0; k < Together; ++k) {
                wanted[k] = hn::Set(d, static_cast<std::uint8_t>(first + k));
                found[k] = hn::Zero(d);
            }
            for (std::size_t i = begin; i < std::min(begin + Part, count); i += hn::Lanes(d)) {
                const auto code = hn::LoadU(d, codes + i);
#pragma GCC unroll 8
                for (unsigned int k = 0; k < Together; ++k)
                    found[k] = hn::Sub(found[k], hn::VecFromMask(d, hn::Eq(code, wanted[k])));
            }
#pragma GCC unroll 8
            for (unsigned int k = 0; k < Together; ++k)
                counts[first + k] += static_cast<unsigned int>(
                    hn::GetLane(hn::SumOfLanes(dsum, hn::SumsOf8(found[k]))));
        }
}

#endif

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
        // NaN belongs to neither side.
        const auto below = hn::And(good, hn::Lt(value, lower));
        const auto above = hn::AndNot(below, hn::And(good, hn::Ge(value, upper)));
        const auto binned = hn::And(good, hn::And(hn::Ge(value, lower), hn::Lt(value, upper)));
        if (!hn::AllFalse(d, above))
            to.aboveCount += packStore(d, value, above, to.above + to.aboveCount);
        if (!hn::AllFalse(d, below))
            to.belowCount += packStore(d, value, below, to.below + to.belowCount);
        if (!hn::AllFalse(d, binned))
            to.binnedCount += packStore(d, value, binned, to.binned + to.binnedCount);
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
HWY_EXPORT(countAll);
HWY_EXPORT(partBlock);

template <>
Encoded encode(const unsigned char* pixels, const std::uint8_t* bits, std::size_t count, int base,
               std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encode8)(pixels, bits, count, base, codes, others);
}
template <>
Encoded encode(const unsigned short* pixels, const std::uint8_t* bits, std::size_t count, int base,
               std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encode16)(pixels, bits, count, base, codes, others);
}
template <>
Encoded encode(const short* pixels, const std::uint8_t* bits, std::size_t count, int base,
               std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encodeShort)(pixels, bits, count, base, codes, others);
}
template <>
Encoded encode(const unsigned int* pixels, const std::uint8_t* bits, std::size_t count,
               unsigned int base, std::uint8_t* codes, unsigned int* others)
{
    return HWY_DYNAMIC_DISPATCH(encode32)(pixels, bits, count, base, codes, others);
}
template <>
Encoded encode(const int* pixels, const std::uint8_t* bits, std::size_t count, int base,
               std::uint8_t* codes, int* others)
{
    return HWY_DYNAMIC_DISPATCH(encodeInt)(pixels, bits, count, base, codes, others);
}

void countCodes(const std::uint8_t* codes, std::size_t count, unsigned int highest,
                unsigned int* counts)
{
    HWY_DYNAMIC_DISPATCH(countAll)(codes, count, highest, counts);
}

void part(const float* pixels, const std::uint8_t* bits, std::size_t count, FloatParts& parts)
{
    HWY_DYNAMIC_DISPATCH(partBlock)(pixels, bits, count, parts);
}

}  // namespace histogramblocks
#endif
