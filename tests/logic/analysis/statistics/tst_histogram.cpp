// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The cumulative histogram in cases worked out by hand; tst_numpy has the random ones.
#include "logic/analysis/statistics/IntegratedHistogram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using morvend::imglib::MImage;

namespace {

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
    // Bins of floats have a width of 1e-6, here from 0.01 to 0.11, and count as a whole.
    const MImage bins = row(4, 0.2f, {0.0100004f, 0.0100008f, 0.0100014f});
    expectCounts(bins, MImage(bins, 0u), 60'000,
                 {{0.00999, 0}, {0.0100002, 2}, {0.0100018, 3}, {0.1, 3}, {0.15, 3}, {0.3, 4}});
    // Where all would share a few bins, each value counts.
    const MImage small = row(9, 4e-7f, {1e-9f, 2e-7f, 0.f, -1e-8f});
    expectCounts(small, MImage(small, 0u), 2.4e-7,
                 {{-2e-8, 0}, {0, 2}, {1.1e-9, 3}, {3e-7, 4}, {3.9e-7, 4}, {5e-7, 9}});
    // A mean that is no number puts large pixels into the last bin.
    const MImage odd = row(3, 5e-5, {5e-5, nan, 2e10});
    expectCounts(odd, MImage(odd, 0u), nan, {{5e-5, 1}, {9.99995e-5, 2}});
    const MImage masked(4, 4, 3u);
    expectCounts(masked, MImage(4, 4, 2u), nan, {{-1, 0}, {0, 0}, {3, 0}, {1e12, 0}});
    // A value below all that the type can hold is below every pixel.
    expectCounts(MImage(4, 4, 0u), MImage(4, 4, 0u), 0, {{-0.5, 0}, {0, 16}});
}

}  // namespace
