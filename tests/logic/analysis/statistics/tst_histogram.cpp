// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The cumulative histogram against counting by hand, for all pixel types.
#include "logic/IntegratedHistogram.h"
#include "logic/analysis/statistics/MaskRule.h"
#include "tests/support/EveryTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <span>

using morvend::imglib::MImage;

namespace {

/// The pixels that count, and for floats the bins by the definition.
template <class T>
struct PlainHistogram {
    double lower, upper, perUnit;
    std::vector<T> counted;

    template <class R>
    PlainHistogram(std::span<T> pixels, std::span<R> marks, double mean)
    {
        using Limits = std::numeric_limits<T>;
        const bool real = std::is_floating_point_v<T>;
        const double r = std::is_same_v<T, float> ? 9.999999974752427e-7 : real ? 1e-9 : 1;
        perUnit = std::is_same_v<T, float> ? 1e6 : real ? 999999999.9999999 : 1;
        const double half = real ? 50000 : 500.0 * sizeof(T);
        lower = std::fmax((mean - half) * r, double(Limits::min()));
        upper = std::fmin((mean + half) * r, double(Limits::max()));
        for (std::size_t i = 0; i < pixels.size(); ++i)
            if (maskrule::good(marks[i]) && !std::isnan(double(pixels[i])))
                counted.push_back(pixels[i]);
        std::sort(counted.begin(), counted.end());
    }
    /// Exact but for floats in the binned range, where all of their bin count.
    unsigned int value(double x) const
    {
        const double v = std::is_integral_v<T> ? std::floor(x) : double(T(x));
        const auto bin = [&](double each) { return std::size_t((each - lower) * perUnit); };
        const bool binned = std::is_floating_point_v<T> && v >= lower && v < upper;
        return unsigned(std::partition_point(counted.begin(), counted.end(),
                                             [&](T t) {
                                                 const auto each = double(t);
                                                 return binned && each >= lower && each < upper
                                                            ? bin(each) <= bin(v)
                                                            : each <= v;
                                             }) -
                        counted.begin());
    }
};

/// Values spread over bins and tails.
template <class T>
constexpr double spreadOf = std::is_same_v<T, float>    ? 0.2
                            : std::is_same_v<T, double> ? 1e-4
                                                        : 60;

template <class T>
void checkPlaces(const MImage& image, const MImage& mask, double mean,
                 const PlainHistogram<T>& plain, const std::vector<double>& places)
{
    IntegratedHistogram histogram;
    histogram.compute(image, mask, mean);
    for (const double x : places) {
        if (std::isnan(x) ||
            (std::is_integral_v<T> && (std::floor(x) > double(std::numeric_limits<T>::max()) ||
                                       std::floor(x) < double(std::numeric_limits<T>::min()))))
            continue;
        if (std::is_same_v<T, bool> && x != 0 && x != 1)
            continue;
        ASSERT_EQ(histogram.value(x), plain.value(x)) << "at " << x;
    }
}

template <class T, class R>
void compare(unsigned int seed, int width = 100, int height = 50, double offset = 0,
             double spread = spreadOf<T>)
{
    std::mt19937 random(seed);
    MImage image(width, height, T(0));
    MImage mask(width, height, R(0));
    const std::span pixels(static_cast<T*>(image.data()), image.size());
    const std::span marks(static_cast<R*>(mask.data()), mask.size());
    double sum = 0, count = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        double value = offset + spread * double(random() % 1000) / 999;
        const auto kind = static_cast<unsigned int>(random() % 50);
        if (kind == 0)
            value = double(std::numeric_limits<T>::max()) / double(1 + random() % 7);
        if (kind == 1 && !std::is_same_v<T, bool> && std::numeric_limits<T>::is_signed)
            value = -value;
        if (kind == 2 && std::is_floating_point_v<T>)
            value = std::nan("");
        if (kind == 3)
            marks[i] = R(random() % 2 ? 1 : 64);
        pixels[i] = value >= double(std::numeric_limits<T>::max()) ? std::numeric_limits<T>::max()
                                                                   : T(value);
        if (maskrule::good(marks[i]) && kind > 3) {
            sum += double(pixels[i]);
            ++count;
        }
    }
    const double mean = sum / count;
    const PlainHistogram<T> plain(pixels, marks, mean);
    std::vector<double> places{plain.lower, plain.upper, mean, 0.0, -1.0, 1e9, -1e9};
    for (int k = 0; k < 120; ++k)
        places.push_back(double(pixels[random() % pixels.size()]) + (k % 3 - 1) * spread / 50);
    if (std::is_integral_v<T>)
        for (int k = -3; k <= 3; ++k)
            for (const double end : {plain.lower, mean, plain.upper})
                places.push_back(std::round(end) + k);
    forEveryTarget([&] { checkPlaces<T>(image, mask, mean, plain, places); });
}

TEST(Histogram, EqualsCountingForAllTypes)
{
    using Types = morvend::datatypes::PixelTypes;
    unsigned int seed = 0;
    const auto compareAll = [&]<class T>(T) {
        std::apply([&](auto... masks) { (compare<T, decltype(masks)>(++seed), ...); }, Types());
    };
    std::apply([&](auto... types) { (compareAll(types), ...); }, Types());
}

template <class T>
void compareLarge()
{
    // Around 0, around values of several bytes, and wider than any table; odd sizes.
    compare<T, unsigned int>(1, 301, 299);
    compare<T, unsigned int>(2, 1031, 97, 3, 250);
    compare<T, bool>(3, 65537, 1, 100, 27);
    if (sizeof(T) > 1) {
        compare<T, unsigned int>(4, 257, 257, 7000, 300);
        compare<T, unsigned int>(5, 257, 257, 3000, 9000);
    }
}

TEST(Histogram, OfLargeImagesEqualsCounting)
{
    compareLarge<unsigned char>();
    compareLarge<unsigned short>();
    compareLarge<short>();
    compareLarge<unsigned int>();
    compareLarge<int>();
    compareLarge<float>();
}

/// The numbers of pixels up to some values.
void expectCounts(const MImage& image, const MImage& mask, double mean,
                  const std::vector<std::pair<double, unsigned int>>& counts)
{
    IntegratedHistogram histogram;
    EXPECT_EQ(histogram.value(5), 0u) << "without image";
    histogram.compute(image, mask, mean);
    for (const auto& [value, count] : counts)
        EXPECT_EQ(histogram.value(value), count) << value;
}

template <class T>
MImage row(int width, T value, const std::vector<T>& first)
{
    MImage image(width, 1, value);
    std::copy(first.begin(), first.end(), static_cast<T*>(image.data()));
    return image;
}

TEST(Histogram, IsExactInBinsAndTails)
{
    const double nan = std::nan("");
    const MImage narrow = row(2000, 1000, {-1, 70'000, 2999});  // bins from -1000 to 3000
    expectCounts(narrow, MImage(narrow, 0u), 1000,
                 {{-1.5, 0},
                  {-1, 1},
                  {2998.9, 1998},
                  {2999.7, 1999},
                  {69'999, 1999},
                  {70'000, 2000},
                  {1e300, 2000},
                  {nan, 0}});
    // Bins from a fraction on: a pixel's own value counts, also the last one below a fraction.
    const MImage fractional = row(2000, 3000, {1000, 4999, 5000});
    expectCounts(
        fractional, MImage(fractional, 0u), 2999.9,
        {{999, 0}, {1000, 1}, {2999, 1}, {3000, 1998}, {4998, 1998}, {4999, 1999}, {5000, 2000}});
    const MImage floats = row(100, 10.0f, {-3.5f, std::nanf("")});
    expectCounts(floats, MImage(floats, 0u), 10, {{-4, 0}, {-3.5, 1}, {9.999, 1}, {10, 99}});
    // A mean that is no number puts large pixels into the last bin.
    const MImage odd = row(3, 5e-5, {5e-5, nan, 2e10});
    expectCounts(odd, MImage(odd, 0u), nan, {{5e-5, 1}, {9.99995e-5, 2}});
    const MImage masked(4, 4, 3u);
    expectCounts(masked, MImage(4, 4, 2u), nan, {{-1, 0}, {0, 0}, {3, 0}, {1e12, 0}});
    // A value below all that the type can hold is below every pixel.
    expectCounts(MImage(4, 4, 0u), MImage(4, 4, 0u), 0, {{-0.5, 0}, {0, 16}});
}

}  // namespace
