// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector loops of the statistics, for each instruction set: blocks that stay in the nearest
// cache, so that a block with rare pixels can be gone over again.
#include "logic/analysis/statistics/PixelTotals.h"

#include "logic/analysis/statistics/TotalsBlock.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/statistics/PixelTotals.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

#include "logic/analysis/statistics/GoodLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pixeltotals::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
using tarvik_simd::HWY_NAMESPACE::goodLanes;

#if HWY_TARGET == HWY_SCALAR

template <class T>
std::size_t integerBlock(const T* pixels, const std::uint8_t* bits, std::size_t count, T fill,
                         IntegerBlock<T>& block)
{
    for (std::size_t i = 0; i < count; ++i) {
        const T value = (bits[i / 8] >> (i % 8)) & 1 ? pixels[i] : fill;
        block.lowest = std::min(block.lowest, value);
        block.highest = std::max(block.highest, value);
        const auto number = static_cast<std::int64_t>(value);
        block.nonzeros += value != 0;
        block.sum += number;
        block.squares += static_cast<std::uint64_t>(number) * static_cast<std::uint64_t>(number);
    }
    return count;
}

void floatBlock(const float* pixels, const std::uint8_t* bits, std::size_t count, FloatBlock& block)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (((bits[i / 8] >> (i % 8)) & 1) == 0)
            continue;
        const float value = pixels[i];
        const double number = static_cast<double>(value);
        block.lowest = value < block.lowest ? value : block.lowest;
        block.highest = value > block.highest ? value : block.highest;
        block.zeros += !(value > 0) && !(value < 0);
        block.sums[i % FloatBlock::Lanes] += number;
        block.squares[i % FloatBlock::Lanes] += number * number;
    }
}

#else

/// Counts 32-bit lanes; pixels of fewer bits are widened.
template <class T>
HWY_INLINE std::size_t integerBlock(const T* pixels, const std::uint8_t* bits, std::size_t count,
                                    T fill, IntegerBlock<T>& block)
{
    using Lane = std::conditional_t<sizeof(T) == 4, T, std::int32_t>;
    const hn::ScalableTag<Lane> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const hn::RepartitionToWide<decltype(d)> dw;
    const hn::RepartitionToWide<decltype(du)> duw;
    const hn::Rebind<T, decltype(d)> dt;
    const std::size_t lanes = hn::Lanes(d);
    constexpr std::size_t Most = hn::MaxLanes(hn::ScalableTag<Lane>());
    const auto filled = hn::Set(d, static_cast<Lane>(fill));
    const auto one = hn::Set(du, 1U);
    auto low = filled;
    auto high = filled;
    auto nonzeros = hn::Zero(du);
    auto sum = hn::Zero(d);
    auto even = hn::Zero(dw);
    auto odd = hn::Zero(dw);
    std::size_t i = 0;
    for (; i < count; i += lanes) {
        // The hardware prefetcher alone stays behind.
        __builtin_prefetch(reinterpret_cast<const char*>(pixels + i) + 4096);
        auto value = filled;
        if constexpr (sizeof(T) == 4)
            value = hn::LoadU(d, pixels + i);
        else
            value = hn::PromoteTo(d, hn::LoadU(dt, pixels + i));
        value = hn::IfThenElse(goodLanes(d, bits, i), value, filled);
        low = hn::Min(low, value);
        high = hn::Max(high, value);
        nonzeros = hn::Add(nonzeros, hn::Min(hn::BitCast(du, value), one));
        sum = hn::Add(sum, value);
        const auto upper = hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(duw, value)));
        even = hn::Add(even, hn::MulEven(value, value));
        odd = hn::Add(odd, hn::MulEven(upper, upper));
    }
    Lane sums[Most];
    hn::StoreU(sum, d, sums);
    for (std::size_t k = 0; k < lanes; ++k)
        block.sum += static_cast<std::int64_t>(sums[k]);
    // By hand: sums of large squares wrap, which signed sums of lanes may not.
    std::uint64_t squares[hn::MaxLanes(hn::ScalableTag<std::uint64_t>())];
    hn::StoreU(hn::BitCast(duw, hn::Add(even, odd)), duw, squares);
    for (std::size_t k = 0; k < hn::Lanes(duw); ++k)
        block.squares += squares[k];
    block.nonzeros += hn::GetLane(hn::SumOfLanes(du, nonzeros));
    block.lowest = std::min(block.lowest, static_cast<T>(hn::GetLane(hn::MinOfLanes(d, low))));
    block.highest = std::max(block.highest, static_cast<T>(hn::GetLane(hn::MaxOfLanes(d, high))));
    return i;
}

HWY_INLINE void floatBlock(const float* pixels, const std::uint8_t* bits, std::size_t count,
                           FloatBlock& block)
{
    const hn::ScalableTag<float> d;
    const hn::ScalableTag<double> dd;
    const hn::Rebind<float, decltype(dd)> dh;
    const hn::RebindToUnsigned<decltype(d)> du;
    constexpr std::size_t Wide = hn::MaxLanes(hn::ScalableTag<double>());
    constexpr std::size_t Vectors = FloatBlock::Lanes / Wide;
    hn::Vec<decltype(dd)> sums[Vectors];
    hn::Vec<decltype(dd)> squares[Vectors];
#pragma GCC unroll 8
    for (std::size_t k = 0; k < Vectors; ++k)
        sums[k] = squares[k] = hn::Zero(dd);
    const auto fillLow = hn::Set(d, block.lowest);
    const auto fillHigh = hn::Set(d, block.highest);
    auto low = fillLow;
    auto high = fillHigh;
    auto zeros = hn::Zero(du);
    for (std::size_t i = 0; i < count; i += FloatBlock::Lanes) {
        __builtin_prefetch(pixels + i + 1024);
#pragma GCC unroll 4
        for (std::size_t k = i; k < i + FloatBlock::Lanes; k += 2 * Wide) {
            const auto value = hn::LoadU(d, pixels + k);
            const auto good = goodLanes(d, bits, k);
            low = hn::Min(low, hn::IfThenElse(good, value, fillLow));
            high = hn::Max(high, hn::IfThenElse(good, value, fillHigh));
            const auto zero = hn::And(good, hn::Not(hn::Lt(hn::Zero(d), hn::Abs(value))));
            zeros = hn::Sub(zeros, hn::BitCast(du, hn::VecFromMask(d, zero)));
        }
#pragma GCC unroll 8
        for (std::size_t k = 0; k < Vectors; ++k) {
            const std::size_t at = i + k * Wide;
            const auto value = hn::PromoteTo(
                dd, hn::IfThenElseZero(goodLanes(dh, bits, at), hn::LoadU(dh, pixels + at)));
            sums[k] = hn::Add(sums[k], value);
            // The square of a float is exact as a double, so that a fused addition is none.
            squares[k] = hn::MulAdd(value, value, squares[k]);
        }
    }
    for (std::size_t k = 0; k < Vectors; ++k) {
        hn::StoreU(sums[k], dd, block.sums + k * Wide);
        hn::StoreU(squares[k], dd, block.squares + k * Wide);
    }
    block.lowest = hn::GetLane(hn::MinOfLanes(d, low));
    block.highest = hn::GetLane(hn::MaxOfLanes(d, high));
    block.zeros = hn::GetLane(hn::SumOfLanes(du, zeros));
}

#endif

template <class T>
HWY_INLINE PixelTotals<T> integerTotals(const T* pixels, const GoodPixels& good, int saturation)
{
    IntegerTotals<T> totals(pixels, good, saturation);
    const auto* bits = reinterpret_cast<const std::uint8_t*>(good.words());
    for (std::size_t begin = 0; begin < good.size(); begin += BlockPixels) {
        const std::size_t count = std::min(BlockPixels, good.size() - begin);
        IntegerBlock<T> block(totals.fill());
        const std::size_t lanes =
            integerBlock(pixels + begin, bits + begin / 8, count, totals.fill(), block);
        totals.add(begin, count, lanes, block);
    }
    return totals.result();
}

PixelTotals<unsigned char> uint8Totals(const unsigned char* pixels, const GoodPixels& good,
                                       int saturation)
{
    return integerTotals(pixels, good, saturation);
}
PixelTotals<unsigned short> uint16Totals(const unsigned short* pixels, const GoodPixels& good,
                                         int saturation)
{
    return integerTotals(pixels, good, saturation);
}
PixelTotals<short> int16Totals(const short* pixels, const GoodPixels& good, int saturation)
{
    return integerTotals(pixels, good, saturation);
}
PixelTotals<unsigned int> uint32Totals(const unsigned int* pixels, const GoodPixels& good,
                                       int saturation)
{
    return integerTotals(pixels, good, saturation);
}
PixelTotals<int> int32Totals(const int* pixels, const GoodPixels& good, int saturation)
{
    return integerTotals(pixels, good, saturation);
}

PixelTotals<float> floatTotals(const float* pixels, const GoodPixels& good, int)
{
    PixelTotals<float> totals(pixels[0]);
    const auto* bits = reinterpret_cast<const std::uint8_t*>(good.words());
    for (std::size_t begin = 0; begin < good.size(); begin += BlockPixels) {
        const std::size_t count = std::min(BlockPixels, good.size() - begin);
        FloatBlock block(totals);
        floatBlock(pixels + begin, bits + begin / 8, count, block);
        block.addTo(totals, pixels, good, begin, begin + count);
    }
    return totals;
}

}  // namespace pixeltotals::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pixeltotals {

HWY_EXPORT(uint8Totals);
HWY_EXPORT(uint16Totals);
HWY_EXPORT(int16Totals);
HWY_EXPORT(uint32Totals);
HWY_EXPORT(int32Totals);
HWY_EXPORT(floatTotals);
}  // namespace pixeltotals

using namespace pixeltotals;

template <>
PixelTotals<unsigned char> vectorTotals(const unsigned char* pixels, const GoodPixels& good, int s)
{
    return HWY_DYNAMIC_DISPATCH(uint8Totals)(pixels, good, s);
}
template <>
PixelTotals<unsigned short> vectorTotals(const unsigned short* pixels, const GoodPixels& good,
                                         int s)
{
    return HWY_DYNAMIC_DISPATCH(uint16Totals)(pixels, good, s);
}
template <>
PixelTotals<short> vectorTotals(const short* pixels, const GoodPixels& good, int s)
{
    return HWY_DYNAMIC_DISPATCH(int16Totals)(pixels, good, s);
}
template <>
PixelTotals<unsigned int> vectorTotals(const unsigned int* pixels, const GoodPixels& good, int s)
{
    return HWY_DYNAMIC_DISPATCH(uint32Totals)(pixels, good, s);
}
template <>
PixelTotals<int> vectorTotals(const int* pixels, const GoodPixels& good, int s)
{
    return HWY_DYNAMIC_DISPATCH(int32Totals)(pixels, good, s);
}
template <>
PixelTotals<float> vectorTotals(const float* pixels, const GoodPixels& good, int s)
{
    return HWY_DYNAMIC_DISPATCH(floatTotals)(pixels, good, s);
}

#endif
