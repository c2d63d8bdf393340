// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector loops of the statistics, for each instruction set: blocks that stay in the nearest
// cache, so that a block with rare pixels can be read again.
#include "logic/analysis/statistics/FloatTotals.h"

#include "logic/analysis/statistics/TotalsBlock.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/statistics/FloatTotals.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

#include "logic/analysis/statistics/GoodLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pixeltotals::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
using tarvik_simd::HWY_NAMESPACE::goodLanes;

#if HWY_TARGET == HWY_SCALAR

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
            // The square of a float is exact as a double, so a fused multiply-add gives the same
            // sum.
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

/// `count` is a multiple of the lanes of vectors.
template <class T>
HWY_INLINE void integerBlock(const T* values, std::size_t count, IntegerBlock<T>& block)
{
    const hn::ScalableTag<T> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const std::size_t lanes = hn::Lanes(d);
    auto low = hn::LoadU(d, values);
    auto high = low;
    auto nonzeros = hn::Zero(du);
    auto sum = hn::Zero(d);
    const hn::RepartitionToWide<decltype(d)> dw;
    const hn::RepartitionToWide<decltype(du)> duw;
    auto even = hn::Zero(dw);
    auto odd = hn::Zero(dw);
    for (std::size_t i = 0; i < count; i += lanes) {
        const auto value = hn::LoadU(d, values + i);
        low = hn::Min(low, value);
        high = hn::Max(high, value);
        nonzeros = hn::Add(nonzeros, hn::Min(hn::BitCast(du, value), hn::Set(du, 1U)));
        sum = hn::Add(sum, value);
        const auto upper = hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(duw, value)));
        even = hn::Add(even, hn::MulEven(value, value));
        odd = hn::Add(odd, hn::MulEven(upper, upper));
    }
    T sums[hn::MaxLanes(hn::ScalableTag<T>())];
    hn::StoreU(sum, d, sums);
    for (std::size_t k = 0; k < lanes; ++k)
        block.sum += static_cast<std::int64_t>(sums[k]);
    // By hand: sums of large squares wrap, which signed sums of lanes may not.
    std::uint64_t squares[hn::MaxLanes(hn::ScalableTag<std::uint64_t>())];
    hn::StoreU(hn::BitCast(duw, hn::Add(even, odd)), duw, squares);
    for (std::size_t k = 0; k < hn::Lanes(duw); ++k)
        block.squares += squares[k];
    block.nonzeros = hn::GetLane(hn::SumOfLanes(du, nonzeros));
    block.lowest = hn::GetLane(hn::MinOfLanes(d, low));
    block.highest = hn::GetLane(hn::MaxOfLanes(d, high));
}

#endif

template <class T>
HWY_INLINE void addValues(ExactTotals<T>& totals, const T* values, std::size_t count)
{
#if HWY_TARGET != HWY_SCALAR
    const std::size_t whole = count - count % hn::Lanes(hn::ScalableTag<T>());
    for (std::size_t begin = 0; begin < whole; begin += BlockPixels) {
        const std::size_t size = std::min(BlockPixels, whole - begin);
        IntegerBlock<T> block(values[begin]);
        integerBlock(values + begin, size, block);
        block.addTo(totals, values + begin, size);
    }
    values += whole;
    count -= whole;
#endif
    for (std::size_t i = 0; i < count; ++i)
        totals.add(values[i]);
}

void addInts(ExactTotals<int>& totals, const int* values, std::size_t count)
{
    addValues(totals, values, count);
}
void addUnsigneds(ExactTotals<unsigned int>& totals, const unsigned int* values, std::size_t count)
{
    addValues(totals, values, count);
}

PixelTotals<float> floatTotals(const float* pixels, const GoodPixels& good)
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

HWY_EXPORT(addInts);
HWY_EXPORT(addUnsigneds);
HWY_EXPORT(floatTotals);
}  // namespace pixeltotals

using namespace pixeltotals;

template <>
void ExactTotals<int>::addAll(const int* values, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(addInts)(*this, values, count);
}

template <>
void ExactTotals<unsigned int>::addAll(const unsigned int* values, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(addUnsigneds)(*this, values, count);
}

PixelTotals<float> vectorTotals(const float* pixels, const GoodPixels& good)
{
    return HWY_DYNAMIC_DISPATCH(floatTotals)(pixels, good);
}

#endif
