// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the vector loops find in one block of pixels, and how blocks become totals.
#pragma once

#include "logic/analysis/statistics/ExactTotals.h"

#include <cmath>
#include <cstdint>

inline constexpr std::size_t BlockPixels = 4096;

/// Sums over a block of integers. They are exact when all lie within SmallLimit; then even 4096 of
/// them fit into one 32-bit lane.
template <class T>
struct IntegerBlock {
    static constexpr std::int64_t SmallLimit = 1 << 18;

    explicit IntegerBlock(T first)
        : lowest(first)
        , highest(first)
    {}
    static bool small(T value)
    {
        return static_cast<std::int64_t>(value) > -SmallLimit &&
               static_cast<std::int64_t>(value) < SmallLimit;
    }
    bool exact() const { return small(lowest) && small(highest); }

    void addTo(ExactTotals<T>& totals, const T* values, std::size_t count) const
    {
        totals.minimum = std::min(totals.minimum, lowest);
        totals.maximum = std::max(totals.maximum, highest);
        totals.zeros += static_cast<unsigned int>(count) - nonzeros;
        if (saturates(highest, totals.saturation))
            for (std::size_t i = 0; i < count; ++i)
                totals.saturated += saturates(values[i], totals.saturation);
        if (exact()) {
            totals.sum += sum;
            totals.squares += squares;
            return;
        }
        for (std::size_t i = 0; i < count; ++i)
            totals.addToSums(values[i]);
    }

    T lowest, highest;
    unsigned int nonzeros = 0;
    std::int64_t sum = 0;
    std::uint64_t squares = 0;
};

/// Sums over the good floats of a block. Pixel i is added to sum i % Lanes in doubles, whatever the
/// width of vectors. The extremes are meaningless if there is a NaN.
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
        // A block that holds a NaN or moves an extreme is processed in order: which of several NaNs
        // and zeros remains depends on it. Nothing is above a maximum that is NaN.
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
