// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Counting of pairs of bytes.
#include "logic/analysis/statistics/PairCounts.h"

#include <cstring>

namespace {

constexpr std::size_t Pairs = 1 << 16;

}  // namespace

PairCounts::PairCounts()
    : _memory(morvend::image::PixelBuffer::allocate(2 * Pairs * sizeof(std::uint32_t)))
    , _even(reinterpret_cast<std::uint32_t*>(_memory->data()))
    , _odd(_even + Pairs)
{
    std::memset(_memory->data(), 0, _memory->size());
}

void PairCounts::add(std::uint8_t* bytes, std::size_t size)
{
    std::memset(bytes + size, 0, 8);
    for (std::size_t i = 0; i < size; i += 8) {
        std::uint64_t four = 0;
        std::memcpy(&four, bytes + i, 8);
        ++_even[four & 0xffffU];
        ++_odd[(four >> 16) & 0xffffU];
        ++_even[(four >> 32) & 0xffffU];
        ++_odd[four >> 48];
    }
}

std::array<unsigned int, 256> PairCounts::counts() const
{
    std::array<unsigned int, 256> result{};
    for (std::size_t one = 0; one < 256; ++one)
        for (std::size_t other = 0; other < 256; ++other) {
            const std::uint32_t count = _even[256 * one + other] + _odd[256 * one + other];
            result[one] += count;
            result[other] += count;
        }
    return result;
}
