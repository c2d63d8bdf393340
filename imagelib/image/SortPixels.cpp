// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Counting for narrow types, vectorised quicksort for the others.
#include "imagelib/image/SortPixels.h"

#include "imagelib/image/VectorSort.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace morvend::image {

namespace {

/// The type of the same width and order that the vectorised sort knows.
template <class T>
using Known = std::conditional_t<
    std::is_floating_point_v<T>, T,
    std::conditional_t<sizeof(T) == 4,
                       std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>,
                       std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>>;

template <class T>
void countingSort(T* values, std::size_t count)
{
    constexpr int Lowest = std::numeric_limits<T>::min();
    constexpr std::size_t Values = std::size_t(1) << (8 * sizeof(T));
    if (count < Values / 64)
        return std::sort(values, values + count);
    std::vector<std::size_t> counts(Values);
    for (std::size_t i = 0; i < count; ++i)
        ++counts[static_cast<std::size_t>(int(values[i]) - Lowest)];
    for (std::size_t k = 0; k < counts.size(); ++k)
        values = std::fill_n(values, counts[k], static_cast<T>(int(k) + Lowest));
}

template <class T>
std::ptrdiff_t negativeZeros([[maybe_unused]] const T* values, [[maybe_unused]] std::size_t count)
{
    std::ptrdiff_t number = 0;
    if constexpr (std::is_floating_point_v<T>) {
        using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
        constexpr std::size_t Block = 1024;  // of fixed size, so that the loop is vectorised
        std::size_t i = 0;
        for (; i + Block <= count; i += Block) {
            Bits found = 0;
            for (std::size_t k = 0; k < Block; ++k)
                found += std::bit_cast<Bits>(values[i + k]) == std::bit_cast<Bits>(T(-0.0));
            number += static_cast<std::ptrdiff_t>(found);
        }
        for (; i < count; ++i)
            number += std::bit_cast<Bits>(values[i]) == std::bit_cast<Bits>(T(-0.0));
    }
    return number;
}

}  // namespace

template <class T>
void sortPixels(T* values, std::size_t count)
{
    if constexpr (sizeof(T) <= 2) {
        countingSort(values, count);
    } else {
        // Counted first: the minimum and maximum of processors don't keep the sign of a zero.
        const auto negative = negativeZeros(values, count);
        vectorSort(reinterpret_cast<Known<T>*>(values), count);
        if (negative > 0) {
            const auto [first, last] = std::equal_range(values, values + count, T(0));
            std::fill(first, first + negative, -T(0));
            std::fill(first + negative, last, T(0));
        }
    }
}

template void sortPixels(bool*, std::size_t);
template void sortPixels(char*, std::size_t);
template void sortPixels(signed char*, std::size_t);
template void sortPixels(short*, std::size_t);
template void sortPixels(int*, std::size_t);
template void sortPixels(long long*, std::size_t);
template void sortPixels(unsigned char*, std::size_t);
template void sortPixels(unsigned short*, std::size_t);
template void sortPixels(unsigned int*, std::size_t);
template void sortPixels(unsigned long long*, std::size_t);
template void sortPixels(float*, std::size_t);
template void sortPixels(double*, std::size_t);

}  // namespace morvend::image
