// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rows of pixels folded into one: the vector loops for thumbnails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace thumbnail {

/// A type for the sum of mostRows pixels: 32 bits for narrow ones, which doubles the speed.
template <class T>
using ColumnSum = std::conditional_t<(sizeof(T) < 4), std::int32_t, std::int64_t>;

/// Rows that can be folded in one call.
inline constexpr std::size_t mostRows = 32'000;

/// For each of `columns` columns the sum over `rows` rows, exact, and where T has a sign the
/// bitwise or of the pixels, whose highest bit is set if one was negative. Rows follow one
/// another without gap. `sums` and `bits` have room for `columns`. T is an integer of at most 32
/// bits.
template <class T>
void addRows(const T* pixels, std::size_t columns, std::size_t rows, ColumnSum<T>* sums, T* bits);

/// The bitwise or of rows of bytes.
void joinRows(const std::byte* bytes, std::size_t columns, std::size_t rows, std::byte* bits);

}  // namespace thumbnail
