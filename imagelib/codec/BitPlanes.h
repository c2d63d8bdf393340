// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The heart of the bit shuffle: eight bit planes to bytes and back, with the best kernel of the
// processor.
#pragma once

#include <cstddef>

namespace morvend::codec {

/// Joins eight bit planes to bytes: bit k of bytes[8 * j + i] is bit i of planes[k * count / 8 +
/// j]. `count` is a multiple of 8; the arrays, of `count` bytes each, don't overlap.
using JoinPlanes = void (*)(const std::byte* planes, std::size_t count, std::byte* bytes);

/// The fastest kernel that this processor runs. It keeps to the targets of
/// hwy::SupportedTargets(), by which tests and measurements choose lesser ones.
JoinPlanes joinPlanes();

/// The definition in plain C++; `first`: the byte of each plane to begin with.
void joinPlanesPlain(const std::byte* planes, std::size_t count, std::byte* bytes,
                     std::size_t first = 0);

/// The inverse of joinPlanes.
void splitPlanes(const std::byte* bytes, std::size_t count, std::byte* planes);

/// joinPlanes for processors with AVX-512 VBMI and GFNI; to be called on those only.
void joinPlanesGfni(const std::byte* planes, std::size_t count, std::byte* bytes);

}  // namespace morvend::codec
