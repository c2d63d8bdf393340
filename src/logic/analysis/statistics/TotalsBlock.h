// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the vector loops find in one block of pixels, and how blocks become totals.
#pragma once

#include "logic/analysis/statistics/PixelTotals.h"

#include <cmath>
#include <cstdint>

inline constexpr std::size_t BlockPixels = 4096;

/// Sums over the good pixels of a block, with bad ones replaced by a good one that the caller
/// chose. They are exact when all pixels lie within SmallLimit; then even 4096 of them fit into one
/// 32-bit lane.
template <class T>
struct IntegerBlock {
    static constexpr std::int64_t SmallLimit = 1 << 18;

    explicit IntegerBlock(T fill)
        : lowest(fill)
        , highest(fill)
    {}
    static bool small(T value)
    {
        return static_cast<std::int64_t>(value) > -SmallLimit &&
               static_cast<std::int64_t>(value) < SmallLimit;
    }
    bool exact() const { return small(lowest) && small(highest); }

    T lowest, highest;
    unsigned int nonzeros = 0;
    std::int64_t sum = 0;
    std::uint64_t squares = 0;
};

/// Adds up blocks of integers without loss.
template <class T>
class IntegerTotals {
public:
    IntegerTotals(const T* pixels, const GoodPixels& good, int saturation)
        : _pixels(pixels)
        , _good(good)
        , _saturation(saturation)
        , _totals(pixels[0])
        , _fill(chosenFill(pixels, good))
    {}

    /// A good pixel, which changes no extreme.
    T fill() const { return _fill; }

    /// @param lanes  pixels that the loop counted, bad ones and those beyond the block included
    void add(std::size_t begin, std::size_t count, std::size_t lanes, const IntegerBlock<T>& block)
    {
        const std::size_t good = _good.count(begin, begin + count);
        if (good == 0)
            return;
        _totals.minimum = std::min(_totals.minimum, block.lowest);
        _totals.maximum = std::max(_totals.maximum, block.highest);
        const auto bad = static_cast<unsigned int>(lanes - good);
        const unsigned int nonzeros = block.nonzeros - (_fill != 0 ? bad : 0);
        _totals.zeros += static_cast<unsigned int>(good) - nonzeros;
        if (saturates(block.highest, _saturation))
            _good.forEach(begin, begin + count, [&](std::size_t i) {
                _totals.saturated += saturates(_pixels[i], _saturation);
            });
        if (block.exact()) {
            const auto fill = static_cast<std::int64_t>(_fill);
            _sum += block.sum - bad * fill;
            _squares += block.squares - bad * static_cast<std::uint64_t>(fill * fill);
        } else {
            _addLarge(begin, begin + count);
        }
    }

    PixelTotals<T> result() const
    {
        PixelTotals<T> totals = _totals;
        totals.sum = static_cast<double>(_sum);
        totals.squares = static_cast<double>(_squares);
        return totals;
    }

private:
    __extension__ typedef unsigned __int128 Wide;

    /// The first small good pixel: a large one would make every block inexact. The
    /// first good one when all are large, any when none is good.
    static T chosenFill(const T* pixels, const GoodPixels& good)
    {
        T fill = pixels[0];
        bool any = false;
        for (std::size_t word = 0; word * GoodPixels::WordBits < good.size(); ++word)
            for (std::uint64_t rest = good.words()[word]; rest != 0; rest &= rest - 1) {
                const T pixel = pixels[word * GoodPixels::WordBits +
                                       static_cast<std::size_t>(std::countr_zero(rest))];
                if (IntegerBlock<T>::small(pixel))
                    return pixel;
                fill = any ? fill : pixel;
                any = true;
            }
        return fill;
    }

    void _addLarge(std::size_t begin, std::size_t end)
    {
        _good.forEach(begin, end, [&](std::size_t i) {
            const auto value = static_cast<std::int64_t>(_pixels[i]);
            const auto size = static_cast<std::uint64_t>(value < 0 ? -value : value);
            _sum += value;
            _squares += size * size;
        });
    }

    const T* _pixels;
    const GoodPixels& _good;
    int _saturation;
    PixelTotals<T> _totals;
    T _fill;
    std::int64_t _sum = 0;
    Wide _squares = 0;
};

/// Sums over the good floats of a block. Pixel i is added to sum i % Lanes in doubles, whatever the
/// width of vectors. The extremes mean nothing when there is a NaN.
struct FloatBlock {
    static constexpr std::size_t Lanes = 16;

    /// Begins with the extremes so far.
    explicit FloatBlock(const PixelTotals<float>& totals)
        : lowest(totals.minimum)
        , highest(totals.maximum)
    {}

    void addTo(PixelTotals<float>& totals, const float* pixels, const GoodPixels& good,
               std::size_t begin, std::size_t end) const
    {
        double sum = 0;
        double square = 0;
        for (std::size_t k = 0; k < Lanes; ++k) {
            sum += sums[k];
            square += squares[k];
        }
        totals.sum += sum;
        totals.squares += square;
        totals.zeros += zeros;
        // A block that holds a NaN or moves an extreme is gone over in order: which of several NaNs
        // and zeros stays depends on it. Nothing is above a maximum that is NaN.
        const bool same =
            lowest >= totals.minimum && (std::isnan(totals.maximum) || highest <= totals.maximum);
        if (!same || std::isnan(sum))
            good.forEach(begin, end, [&](std::size_t i) { totals.extend(pixels[i]); });
    }

    float lowest, highest;
    unsigned int zeros = 0;
    double sums[Lanes] = {};
    double squares[Lanes] = {};
};
