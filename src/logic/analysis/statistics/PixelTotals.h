// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The sums and extremes of good pixels.
#pragma once

#include "logic/analysis/statistics/GoodPixels.h"

#include <algorithm>
#include <type_traits>
#include <utility>

/// What one pass over the pixels finds.
template <class T>
struct PixelTotals {
    /// Beginning with the first pixel, even if it is masked.
    T minimum, maximum;
    unsigned int zeros = 0;
    unsigned int saturated = 0;
    double sum = 0;
    double squares = 0;

    explicit PixelTotals(T first)
        : minimum(first)
        , maximum(first)
    {}

    /// Phrased so that a NaN becomes the minimum.
    void extend(T value)
    {
        if (value > maximum)
            maximum = value;
        else if (!(value >= minimum))
            minimum = value;
    }
};

/// True if an integer reaches the header's saturation value, if that is 1 or more.
template <class T>
bool saturates(T value, int saturation)
{
    if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char>)
        return saturation >= 1 && std::cmp_greater_equal(value, saturation);
    else
        return false;
}

/// The totals pixel by pixel.
template <class T>
PixelTotals<T> plainTotals(const T* pixels, const GoodPixels& good, int saturation)
{
    PixelTotals<T> totals(pixels[0]);
    good.forEach(0, good.size(), [&](std::size_t i) {
        const T value = pixels[i];
        if (!(value > T(0)) && !(value < T(0)))
            ++totals.zeros;
        else if (saturates(value, saturation))
            ++totals.saturated;
        const auto number = static_cast<double>(value);
        totals.sum += number;
        totals.squares += number * number;
        totals.extend(value);
    });
    return totals;
}
