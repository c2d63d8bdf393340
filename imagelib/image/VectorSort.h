// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vectorised quicksort.
#pragma once

#include <cstddef>

namespace morvend::image {

/// Sorts values in place, ascending; there is no NaN among them, and zeros of both signs are equal
/// and may change into each other. Work on large arrays is split over oneTBB's threads.
/// For signed and unsigned integers of 32 and 64 bits, float and double.
/// Memory: scratch of the same size from the pool.
/// @throws MRuntimeException when memory is short
template <class T>
void vectorSort(T* values, std::size_t count);

}  // namespace morvend::image
