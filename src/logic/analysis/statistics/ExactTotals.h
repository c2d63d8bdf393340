// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sums and extremes of integers, without loss.
#pragma once

#include "logic/analysis/statistics/PixelTotals.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// T is an integer of 32 bits.
template <class T>
struct ExactTotals {
    __extension__ typedef unsigned __int128 Wide;

    ExactTotals(T first, int itsSaturation)
        : minimum(first)
        , maximum(first)
        , saturation(itsSaturation)
    {}

    void add(T value, unsigned int times = 1)
    {
        minimum = std::min(minimum, value);
        maximum = std::max(maximum, value);
        if (value == 0)
            zeros += times;
        else if (saturates(value, saturation))
            saturated += times;
        addToSums(value, times);
    }
    void addToSums(T value, unsigned int times = 1)
    {
        const auto number = static_cast<std::int64_t>(value);
        const auto size = static_cast<std::uint64_t>(number < 0 ? -number : number);
        sum += number * times;
        squares += static_cast<Wide>(size * size) * times;
    }
    /// Adds many values.
    void addAll(const T* values, std::size_t count);

    T minimum, maximum;
    int saturation;  // as for saturates()
    unsigned int zeros = 0;
    unsigned int saturated = 0;
    std::int64_t sum = 0;
    Wide squares = 0;
};

template <>
void ExactTotals<int>::addAll(const int* values, std::size_t count);
template <>
void ExactTotals<unsigned int>::addAll(const unsigned int* values, std::size_t count);
