// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The twelve pixel types as C++ types, and the way from a run-time pixel type to one of them.
#pragma once

#include "imagelib/image/MException.h"
#include "imagelib/image/Type.h"

#include <cstddef>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace morvend::datatypes {

/// The twelve pixel types, in the order that every dispatch uses.
using PixelTypes = std::tuple<bool, char, signed char, short, int, long long, unsigned char,
                              unsigned short, unsigned int, unsigned long long, float, double>;

/// Kind of a C++ pixel type.
template <class T>
inline constexpr Type typeOf = std::is_same_v<T, bool>       ? BOOL
                               : std::is_same_v<T, char>     ? CHAR
                               : std::is_floating_point_v<T> ? FLOAT
                               : std::is_unsigned_v<T>       ? UINT
                                                             : INT;

/// Width of a C++ pixel type.
template <class T>
inline constexpr std::size_t bitsOf = 8 * sizeof(T);

/// The error text of every dispatch.
inline std::string missingImplementation(Type type, std::size_t bits)
{
    return "Missing implementation for type " + typeStr(type) + " of size " + std::to_string(bits);
}

namespace detail {

template <class Result, class Functor, class Head, class... Tail>
Result dispatchOver(Type type, std::size_t bits, Functor& functor, std::tuple<Head, Tail...>*)
{
    if (type == typeOf<Head> && bits == bitsOf<Head>)
        return functor.template operator()<Head>();
    if constexpr (sizeof...(Tail) > 0)
        return dispatchOver<Result>(type, bits, functor,
                                    static_cast<std::tuple<Tail...>*>(nullptr));
    else
        throw MNotImplementedException(missingImplementation(type, bits));
}

}  // namespace detail

/// Calls functor.template operator()<T>() with the C++ type of a run-time pixel type.
/// @throws MNotImplementedException for any other pair
template <class Functor>
auto dispatchPixelType(Type type, std::size_t bits, Functor&& functor)
{
    using Result = decltype(functor.template operator()<bool>());
    return detail::dispatchOver<Result>(type, bits, functor, static_cast<PixelTypes*>(nullptr));
}

/// True for one of the twelve pixel types.
inline bool isPixelType(Type type, std::size_t bits)
{
    switch (type) {
    case BOOL:
    case CHAR:
        return bits == 8;
    case UINT:
    case INT:
        return bits == 8 || bits == 16 || bits == 32 || bits == 64;
    case FLOAT:
        return bits == 32 || bits == 64;
    case NONE:
        break;
    }
    return false;
}

/// Converts a pixel value. Integers wrap as in C++; floating values are truncated and clamped to
/// the range of an integer type, and NaN becomes 0, so that no value is undefined.
template <class To, class From>
constexpr To convertPixel(From value)
{
    if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To> &&
                  !std::is_same_v<To, bool>) {
        // The upper limit of a 64-bit type rounds up to 2^63 or 2^64, hence "at or above".
        constexpr From low = static_cast<From>(std::numeric_limits<To>::min());
        constexpr From high = static_cast<From>(std::numeric_limits<To>::max());
        if (!(value > low))
            return value <= low ? std::numeric_limits<To>::min() : To(0);
        if (value >= high)
            return std::numeric_limits<To>::max();
        return static_cast<To>(value);
    } else {
        return static_cast<To>(value);
    }
}

}  // namespace morvend::datatypes
