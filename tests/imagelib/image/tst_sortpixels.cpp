// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The sort of pixel values against the standard library's, byte by byte.
#include "imagelib/image/PixelTypes.h"
#include "imagelib/image/SortPixels.h"
#include "tests/support/EveryTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using Random = std::mt19937_64;
/// A number in units of the type's resolution, of the pixel at a place.
using Distribution = double (*)(Random& random, std::size_t place);

double normal(Random& random) { return std::normal_distribution<double>()(random); }

const std::pair<const char*, Distribution> distributions[] = {
    {"constant", [](Random&, std::size_t) { return 7.0; }},
    {"two values", [](Random& random, std::size_t) { return random() % 9 ? 1e9 : 1.0; }},
    {"few values", [](Random& random, std::size_t) { return double(random() % 20) - 9; }},
    {"uniform", [](Random& random, std::size_t) { return double(random() % 0xfffffffb) / 7; }},
    {"narrow", [](Random& random, std::size_t) { return 1e6 + normal(random); }},
    {"exponential", [](Random& random, std::size_t) { return std::exp(4 * normal(random)); }},
    {"both signs, hot pixels",
     [](Random& random, std::size_t i) {
         return i % 997 ? 50 * normal(random) : 1e12 * normal(random);
     }},
    {"ascending", [](Random&, std::size_t i) { return double(i); }},
    {"descending, one constant",
     [](Random&, std::size_t i) { return double(i % 3 ? 40'000 - int(i) : 77); }},
    // The lowest values stand where the pivots are looked for.
    {"a few high among many equal",
     [](Random&, std::size_t i) { return i % 64 < 63 ? 3.0 : double(i); }},
};

template <class T>
std::vector<T> pixels(Distribution distribution, std::size_t count)
{
    Random random(count);
    std::vector<T> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = morvend::datatypes::convertPixel<T>(distribution(random, i));
    if (std::is_floating_point_v<T> && count > 9) {
        for (std::size_t i = 0; i < count; i += 9)
            values[i] = random() % 2 ? T(0) : T(-0.0);
        using Limits = std::numeric_limits<T>;
        const T ends[] = {Limits::infinity(),       T(-Limits::infinity()), Limits::denorm_min(),
                          T(-Limits::denorm_min()), Limits::max(),          Limits::lowest()};
        std::copy_n(ends, std::min<std::size_t>(count, 6), values.begin());
    }
    return values;
}

template <class T>
void expectSorted(Distribution distribution, std::size_t count)
{
    const std::vector<T> values = pixels<T>(distribution, count);
    std::vector<T> expected = values;
    std::sort(expected.begin(), expected.end(), [](T a, T b) {
        if constexpr (std::is_floating_point_v<T>)
            if (a == b)
                return std::signbit(a) > std::signbit(b);
        return a < b;
    });
    forEveryTarget([&] {
        constexpr std::size_t Guard = 16;
        std::vector<T> sorted = values;
        sorted.resize(count + Guard, T(1));
        morvend::image::sortPixels(sorted.data(), count);
        EXPECT_EQ(std::memcmp(sorted.data(), expected.data(), count * sizeof(T)), 0);
        EXPECT_TRUE(std::all_of(sorted.begin() + std::ptrdiff_t(count), sorted.end(),
                                [](T value) { return value == T(1); }));
    });
}

TEST(SortPixels, SortsEveryTypeAndDistribution)
{
    const auto sortAll = [&]<class T>(T) {
        if constexpr (!std::is_same_v<T, bool>) {
            for (const auto& [name, distribution] : distributions)
                for (const unsigned count : {0U, 1U, 2U, 10U, 127U, 257U, 300U, 4099U, 150'001U}) {
                    SCOPED_TRACE(std::string(typeid(T).name()) + ", " + name + ", " +
                                 std::to_string(count));
                    expectSorted<T>(distribution, count);
                }
        }
    };
    std::apply([&](auto... types) { (sortAll(types), ...); }, morvend::datatypes::PixelTypes());
}

}  // namespace
