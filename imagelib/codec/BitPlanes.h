// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The heart of the bit shuffle: the bit planes of one block to elements and back.
#pragma once

#include <cstddef>

namespace morvend::codec {

/// Assembles elements from their bit planes: bit b of byte k of elements[8 * j + i] is bit i of
/// planes[(8 * k + b) * count / 8 + j]. `count` elements, a multiple of 8; the arrays, of
/// count * elementSize bytes each, don't overlap.
using UnshuffleBits = void (*)(const std::byte* planes, std::size_t count, std::size_t elementSize,
                               std::byte* elements);

/// The definition in plain C++, for any element size, from byte `first` of each plane on.
void unshuffleBitsPlain(const std::byte* planes, std::size_t count, std::size_t elementSize,
                        std::byte* elements, std::size_t first = 0);

/// The inverse: elements to planes, from byte `first` of each plane on.
void shuffleBitsPlain(const std::byte* elements, std::size_t count, std::size_t elementSize,
                      std::byte* planes, std::size_t first = 0);

/// UnshuffleBits for processors with AVX-512 VBMI and GFNI. Call it on those only.
void unshuffleBitsGfni(const std::byte* planes, std::size_t count, std::size_t elementSize,
                       std::byte* elements);

}  // namespace morvend::codec
