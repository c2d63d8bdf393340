// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every pixel type into every other at its extremes: integers wrap, floating values are truncated
// and held at the ends of an integer type.
#include "imagelib/image/MImage.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

using namespace morvend;
using namespace morvend::imglib;

template <class T>
constexpr auto extremes()
{
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_floating_point_v<T>)
        return std::array{
            Limits::lowest(), Limits::max(), Limits::infinity(), -Limits::infinity(), Limits::min(),
            T(0.5),           T(-2.9),       T(-4294967296e5)};
    else
        return std::array{Limits::min(), Limits::max(), T(0), T(1), T(-1), T(-2)};
}

template <class From, class To>
void expectPixel(From value, To expected)
{
    const MImage image(1, 1, value);
    EXPECT_EQ(image.asType<To>().template pixels<To>()[0], expected)
        << +value << " of type " << typeid(From).name() << " to " << typeid(To).name();
    EXPECT_EQ(image.pixel<To>(0, 0, To(0)), expected);
}

template <class From, class To>
void check()
{
    using Limits = std::numeric_limits<To>;
    if constexpr (std::is_floating_point_v<From> && !std::is_floating_point_v<To> &&
                  !std::is_same_v<To, bool>) {
        // Powers of two are exact; the value before one is far more than 1 below it or in range.
        const From beyond = std::ldexp(From(1), Limits::digits);
        const From low = From(Limits::min());
        for (const From value : {beyond, std::nextafter(beyond, 2 * beyond), 2 * beyond,
                                 std::numeric_limits<From>::infinity()})
            expectPixel(value, Limits::max());
        for (const From value : {low, std::nextafter(low, 2 * low - 1), low * 2 - 1,
                                 -std::numeric_limits<From>::infinity()})
            expectPixel(value, Limits::min());
        expectPixel(std::nextafter(beyond, From(0)), To(std::nextafter(beyond, From(0))));
        expectPixel(From(2.9), To(2));
        expectPixel(From(-0.9), To(0));
        expectPixel(From(Limits::is_signed ? -2.9 : 2.1), Limits::is_signed ? To(-2) : To(2));
        expectPixel(From(NAN), To(0));
    } else {
        // The language has the same rules for these.
        for (const From value : extremes<From>())
            expectPixel(value, static_cast<To>(value));
    }
}

TEST(Conversion, OfAllPairsFollowsTheRules)
{
    const auto checkFrom = []<class From>(From) {
        std::apply([](auto... to) { (check<From, decltype(to)>(), ...); }, datatypes::PixelTypes());
    };
    std::apply([&](auto... from) { (checkFrom(from), ...); }, datatypes::PixelTypes());
}

}  // namespace
