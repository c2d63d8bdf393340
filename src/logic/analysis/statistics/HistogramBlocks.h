// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector steps of the histogram: they split a block of pixels into those that are counted by
// table and the others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace histogramblocks {

inline constexpr std::size_t BlockPixels = 4096;
inline constexpr std::size_t Padding = 64;  // most elements written beyond the end of a buffer

/// Lanes of integer pixels.
template <class T>
using Lane = std::conditional_t<std::is_same_v<T, unsigned int>, unsigned int, int>;

/// What was found in a block of integers.
struct Encoded {
    std::size_t others;    // good pixels outside the window
    unsigned int highest;  // code
};

/// Integers: writes value - base for each good pixel within 256 values from `base` on, else 0, and
/// packs the other good pixels into `others` in order.
/// @param bits  one for each good pixel, 0 up to the end of a vector
/// For unsigned char, unsigned short, short, unsigned int, int. 64 bytes after the pixels and the
/// bits are readable, Padding elements after the other buffers writable.
template <class T>
Encoded encode(const T* pixels, const std::uint8_t* bits, std::size_t count, Lane<T> base,
               std::uint8_t* codes, Lane<T>* others);

/// Codes up to here are counted faster by comparing than in tables.
inline constexpr unsigned int MostCompared = 24;

/// Adds how often each code from 1 on occurs to `counts`. None is above `highest`, at most
/// MostCompared; Padding zeros follow the last of at most BlockPixels codes.
void countCodes(const std::uint8_t* codes, std::size_t count, unsigned int highest,
                unsigned int* counts);

/// The destinations of floats, and how many were written to each.
struct FloatParts {
    float lower, upper;  // ends of the binned range
    float* below;
    float* above;
    float* binned;
    std::size_t belowCount = 0;
    std::size_t aboveCount = 0;
    std::size_t binnedCount = 0;
};

/// Floats: appends each good pixel that is a number to its part, in order.
void part(const float* pixels, const std::uint8_t* bits, std::size_t count, FloatParts& parts);

}  // namespace histogramblocks
