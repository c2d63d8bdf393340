// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ascending sort of pixel values.
#pragma once

#include <cstddef>

namespace morvend::image {

/// Sorts pixel values in place, ascending; there is no NaN among them. -0.0 stands before 0.0, so
/// that the bytes are the same for any algorithm and number of threads. Types of 1 and 2 bytes are
/// counted, the others sorted with vectors. For each of the twelve pixel types.
/// Memory: scratch of the same size from the pool of pixel memory.
/// @throws MRuntimeException when memory is short
template <class T>
void sortPixels(T* values, std::size_t count);

}  // namespace morvend::image
