// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ascending sort of pixel values.
#pragma once

#include <cstddef>

/// Sorts pixel values in place, ascending; there is no NaN among them. -0.0 stands before 0.0, so
/// that the bytes are the same whatever sorts. Vectorised where the processor allows, with the
/// quicksort of Blacher et al. (2022). For each of the twelve pixel types.
template <class T>
void sortPixels(T* values, std::size_t count);
