// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixels and mask values as the three display types take them.
#pragma once

#include "imagelib/image/PixelTypes.h"

#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace morvend::imglib {

/// A pixel as a value of its display type (int, unsigned int, float); wider integers are clamped to
/// the range.
template <class To, class From>
constexpr To displayValue(From value)
{
    if constexpr (std::is_integral_v<To> && std::is_integral_v<From> && sizeof(From) > sizeof(To)) {
        if (std::cmp_less(value, std::numeric_limits<To>::min()))
            return std::numeric_limits<To>::min();
        if (std::cmp_greater(value, std::numeric_limits<To>::max()))
            return std::numeric_limits<To>::max();
        return static_cast<To>(value);
    } else {
        return datatypes::convertPixel<To>(value);
    }
}

/// A mask value; only its low bits count, so integers may wrap.
template <class From>
constexpr std::uint32_t maskValue(From value)
{
    return datatypes::convertPixel<std::uint32_t>(value);
}

}  // namespace morvend::imglib
