// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Constant vectors of lane numbers and lane masks.
#pragma once

#include <array>
#include <cstddef>

namespace morvend::imglib::lanes {

template <class Word, std::size_t Count>
struct alignas(64) Table {
    std::array<Word, Count> values{};
    const Word* data() const { return values.data(); }
};

/// All lanes: the last one.
template <class Word, std::size_t Count>
inline constexpr Table<Word, Count> Last = [] {
    Table<Word, Count> table;
    table.values.fill(Word(Count - 1));
    return table;
}();

/// In the upper half of each pair of groups: the last lane of the lower half.
template <class Word, std::size_t Count, std::size_t Group>
inline constexpr Table<Word, Count> EndOfLowerGroup = [] {
    Table<Word, Count> table;
    for (std::size_t i = 0; i < Count; ++i)
        table.values[i] = Word(i / (2 * Group) * (2 * Group) + Group - 1);
    return table;
}();

/// All bits set in the upper half of each pair of groups.
template <class Word, std::size_t Count, std::size_t Group>
inline constexpr Table<Word, Count> InUpperGroup = [] {
    Table<Word, Count> table;
    for (std::size_t i = 0; i < Count; ++i)
        table.values[i] = (i & Group) != 0 ? Word(-1) : Word(0);
    return table;
}();

/// Number k of Count / 4 vectors, each of Count groups of four bytes: byte i of group j is one if
/// number 4 k + i is at most j.
template <std::size_t Count>
alignas(64) inline constexpr auto OnesUpTo = [] {
    std::array<std::array<unsigned char, 4 * Count>, Count / 4> table{};
    for (std::size_t k = 0; k < Count / 4; ++k) {
        for (std::size_t i = 0; i < 4 * Count; ++i)
            table[k][i] = 4 * k + i % 4 <= i / 4;
    }
    return table;
}();

/// Number of bits set in four bits.
inline constexpr std::array<unsigned char, 16> BitsOfFour{0, 1, 1, 2, 1, 2, 2, 3,
                                                          1, 2, 2, 3, 2, 3, 3, 4};

/// For each word of Count bits: the numbers of its set bits in order, then zeros.
template <std::size_t Count>
alignas(64) inline constexpr auto SetBits = [] {
    std::array<std::array<unsigned char, Count>, std::size_t(1) << Count> table{};
    for (std::size_t bits = 0; bits < table.size(); ++bits) {
        std::size_t at = 0;
        for (std::size_t i = 0; i < Count; ++i) {
            if (bits >> i & 1)
                table[bits][at++] = static_cast<unsigned char>(i);
        }
    }
    return table;
}();

}  // namespace morvend::imglib::lanes
