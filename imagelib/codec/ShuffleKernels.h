// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Vector loops of the shuffles, each chosen at run time for the processor.
#pragma once

#include <cstddef>

namespace morvend::codec {

/// joinPlanes (BitPlanes.h) by the widest vectors of up to 32 bytes.
void joinPlanesVector(const std::byte* planes, std::size_t count, std::byte* bytes);

/// Puts as many elements together as whole vectors hold, from `count` first bytes, `count` second
/// bytes, and so on; returns their number. elementSize 2, 4 or 8; 0 for any other.
std::size_t unshuffleVector(const std::byte* shuffled, std::size_t count, std::size_t elementSize,
                            std::byte* elements);

}  // namespace morvend::codec
