// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every pixel type into every other at its extremes, against the rules written out on wide numbers.
#include "imagelib/image/MImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using namespace morvend;
using namespace morvend::imglib;

__extension__ using Wide = __int128;

template <class T>
std::vector<T> extremes()
{
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_same_v<T, bool>) {
        return {};  // std::vector<bool> has no elements to point to; see the row of its own
    } else if constexpr (std::is_floating_point_v<T>) {
        std::vector<T> values = {Limits::lowest(), Limits::max(), Limits::min(), T(0)};
        for (const T value : {Limits::infinity(), T(0.5), T(1.5), T(2.9)})
            values.insert(values.end(), {value, -value});
        for (const int bits : {7, 8, 15, 16, 31, 32, 63, 64})
            for (const T sign : {T(1), T(-1)}) {
                const T power = std::ldexp(sign, bits);
                values.insert(values.end(), {power, std::nextafter(power, T(0)),
                                             std::nextafter(power, 2 * power)});
            }
        return values;
    } else {
        return {Limits::min(), Limits::max(), T(0), T(1), static_cast<T>(-1), static_cast<T>(-2)};
    }
}

/// Integers wrap, floating values are truncated and held at the ends.
template <class To, class From>
To expected(From value)
{
    if constexpr (std::is_same_v<To, bool>) {
        return value != From(0);
    } else if constexpr (std::is_floating_point_v<To>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_floating_point_v<From>) {
        // long double holds every 64-bit integer.
        const auto low = static_cast<long double>(std::numeric_limits<To>::min());
        const auto high = static_cast<long double>(std::numeric_limits<To>::max());
        const long double whole = std::trunc(static_cast<long double>(value));
        return whole <= low    ? std::numeric_limits<To>::min()
               : whole >= high ? std::numeric_limits<To>::max()
                               : static_cast<To>(whole);
    } else {
        const Wide modulus = Wide(1) << datatypes::bitsOf<To>;
        Wide rest = static_cast<Wide>(value) % modulus;
        if (rest > static_cast<Wide>(std::numeric_limits<To>::max()))
            rest -= modulus;
        if (rest < static_cast<Wide>(std::numeric_limits<To>::min()))
            rest += modulus;
        return static_cast<To>(rest);
    }
}

template <class From, class To>
void check(const MImage& image)
{
    const MImage converted = image.asType<To>();
    const auto* from = image.pixels<From>();
    for (int x = 0; x < image.width(); ++x) {
        const To want = expected<To>(from[x]);
        EXPECT_EQ(converted.pixels<To>()[x], want)
            << "pixel " << x << " of type " << typeid(From).name() << " to " << typeid(To).name();
        EXPECT_EQ(image.pixel<To>(x, 0, To(0)), want);
    }
}

template <class From, class... To>
void checkFrom(const MImage& image, std::tuple<To...>*)
{
    (check<From, To>(image), ...);
}

template <class... From>
void checkAll(std::tuple<From...>* types)
{
    const auto one = [&]<class T>(const std::vector<T>& values) {
        if constexpr (std::is_same_v<T, bool>) {
            MImage image(2, 1, false);
            static_cast<bool*>(image.data())[1] = true;
            checkFrom<T>(image, types);
        } else {
            const MImage image(MImage::BasicImage(values.data(), values.size()), {});
            checkFrom<T>(image, types);
        }
    };
    (one(extremes<From>()), ...);
}

TEST(Conversion, OfAllPairsFollowsTheRules)
{
    checkAll(static_cast<datatypes::PixelTypes*>(nullptr));
    EXPECT_EQ(datatypes::convertPixel<int>(std::nan("")), 0);
}

}  // namespace
