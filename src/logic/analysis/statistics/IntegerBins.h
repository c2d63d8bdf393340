// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bins of integer pixels: where they are counted and where they are looked up.
#pragma once

#include "imagelib/image/PixelTypes.h"

#include <cstddef>
#include <type_traits>

/// Bins of one value each, from the integer part of the binned range's lower end on. A range that
/// begins at a fraction ends at one too, and may hold one value more than there are bins: that
/// value has no bin and belongs to the tail above.
template <class T>
class IntegerBins {
public:
    IntegerBins(double lower, std::size_t count)
        : _first(std::is_same_v<T, bool> ? T(lower != 0)
                                         : morvend::datatypes::convertPixel<T>(lower))
        , _count(count)
    {}
    /// Bin of a value that is at or above the lower end.
    std::size_t of(T value) const { return static_cast<std::size_t>(value - _first); }
    bool beyond(T value) const { return of(value) >= _count; }

private:
    T _first;
    std::size_t _count;
};
