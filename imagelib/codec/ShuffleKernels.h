// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Vector loops of the shuffles, each chosen at run time for the processor.
#pragma once

#include "imagelib/codec/BitPlanes.h"

#include <cstddef>

namespace morvend::codec {

/// The fastest UnshuffleBits that this processor runs. It respects the targets of
/// hwy::SupportedTargets(), with which tests and benchmarks choose slower ones.
UnshuffleBits bitUnshuffler();

/// UnshuffleBits by the widest vectors of up to 32 bytes.
void unshuffleBitsVector(const std::byte* planes, std::size_t count, std::size_t elementSize,
                         std::byte* elements);

/// The inverse of UnshuffleBits, by vectors for the sizes 1, 2 and 4.
void shuffleBits(const std::byte* elements, std::size_t count, std::size_t elementSize,
                 std::byte* planes);

/// Assembles `count` elements of any size from all first bytes, all second bytes, and so on;
/// by vectors for the sizes 1, 2, 4 and 8.
void unshuffleBytes(const std::byte* shuffled, std::size_t count, std::size_t elementSize,
                    std::byte* elements);

}  // namespace morvend::codec
