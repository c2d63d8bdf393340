// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bit planes in plain C++.
#include "imagelib/codec/BitPlanes.h"

#include <cstdint>

namespace morvend::codec {

namespace {

/// Row k, bit i of an 8 x 8 matrix is exchanged with row i, bit k.
std::uint64_t transposeBits(std::uint64_t x)
{
    const auto swapBits = [&x](int distance, std::uint64_t mask) {
        const std::uint64_t t = (x ^ (x >> distance)) & mask;
        x ^= t ^ (t << distance);
    };
    swapBits(7, 0x00AA00AA00AA00AA);
    swapBits(14, 0x0000CCCC0000CCCC);
    swapBits(28, 0x00000000F0F0F0F0);
    return x;
}

}  // namespace

void unshuffleBitsPlain(const std::byte* planes, std::size_t count, std::size_t elementSize,
                        std::byte* elements, std::size_t first)
{
    const std::size_t stride = count / 8;
    for (std::size_t k = 0; k < elementSize; ++k) {
        for (std::size_t j = first; j < stride; ++j) {
            std::uint64_t matrix = 0;
            for (std::size_t b = 0; b < 8; ++b)
                matrix |= std::to_integer<std::uint64_t>(planes[(8 * k + b) * stride + j]) << 8 * b;
            matrix = transposeBits(matrix);
            for (std::size_t i = 0; i < 8; ++i)
                elements[(8 * j + i) * elementSize + k] = static_cast<std::byte>(matrix >> 8 * i);
        }
    }
}

void shuffleBitsPlain(const std::byte* elements, std::size_t count, std::size_t elementSize,
                      std::byte* planes, std::size_t first)
{
    const std::size_t stride = count / 8;
    for (std::size_t k = 0; k < elementSize; ++k) {
        for (std::size_t j = first; j < stride; ++j) {
            std::uint64_t matrix = 0;
            for (std::size_t i = 0; i < 8; ++i)
                matrix |= std::to_integer<std::uint64_t>(elements[(8 * j + i) * elementSize + k])
                          << 8 * i;
            matrix = transposeBits(matrix);
            for (std::size_t b = 0; b < 8; ++b)
                planes[(8 * k + b) * stride + j] = static_cast<std::byte>(matrix >> 8 * b);
        }
    }
}

}  // namespace morvend::codec
