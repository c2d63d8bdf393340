// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which values of which pixel types are marks of gaps.
#include "imagelib/image/GapValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace morvend;
using namespace morvend::imglib;

/// The marks of an image of these pixels, one digit for each; empty without a mask.
template <class T>
std::string marksOf(const std::vector<T>& pixels, int saturation = 0)
{
    MImage image(static_cast<int>(pixels.size()), 1,
                 image::MBasicImage<>(pixels.data(), pixels.size(), std::allocator<char>()));
    if (saturation != 0)
        image.optionalData().set_saturation_value(saturation);
    const MImage mask = gapMask(image);
    std::string marks;
    for (int x = 0; x < mask.width(); ++x)
        marks += std::to_string(mask.pixel<int>(x, 0, 9));
    EXPECT_TRUE(mask.empty() || marksAreIn(mask, image));
    return marks;
}

template <class T>
constexpr T Max = std::numeric_limits<T>::max();

TEST(GapMask, MarksValuesThatAreNoCounts)
{
    EXPECT_EQ(marksOf<int>({0, -1, -2, 7, Max<int>, Max<int> - 1}), "013010");
    EXPECT_EQ(marksOf<int>({0, -1, -2, -3, 7}), "") << "negative counts";
    EXPECT_EQ(marksOf<int>({0, -1, -3, Max<int>}), "0001");
    EXPECT_EQ(marksOf<short>({-2, 0, Max<short>}), "300") << "saturated, not a gap";
    EXPECT_EQ(marksOf<signed char>({-1, Max<signed char>}), "10");
    EXPECT_EQ(marksOf<long long>({-1, 0, Max<long long>}), "101");
    EXPECT_EQ(marksOf<unsigned char>({1, 254, 255}), "001");
    EXPECT_EQ(marksOf<unsigned short>({1, 65534, 65535}), "001");
    EXPECT_EQ(marksOf<unsigned>({1, Max<unsigned> - 2, Max<unsigned> - 1, Max<unsigned>}), "0031");
    EXPECT_EQ(marksOf<unsigned long long>({0, ~0ULL - 1, ~0ULL}), "031");
    EXPECT_EQ(marksOf<float>({-1, 0.5F, -2, std::numeric_limits<float>::quiet_NaN()}), "1030");
    EXPECT_EQ(marksOf<double>({-1, -0.5, -2}), "");
    EXPECT_EQ(marksOf<float>({-5, Max<float>, 1e38F, HUGE_VALF}), "0103");
    EXPECT_EQ(marksOf<char>({-1, 127}), "");
    EXPECT_EQ(marksOf<int>({0, 1, 2}), "");
    std::vector<int> many(1000, 7);
    many[600] = -1;
    EXPECT_EQ(marksOf(many), std::string(600, '0') + '1' + std::string(399, '0'));
    many[999] = -3;
    EXPECT_EQ(marksOf(many), "") << "a negative count far from the mark";
}

TEST(GapMask, CountsThatReachTheTopOfANarrowTypeAreCounts)
{
    EXPECT_EQ(marksOf<unsigned short>({1, 65535}, 65535), "");
    EXPECT_EQ(marksOf<unsigned short>({1, 65535}, 65534), "01");
    EXPECT_EQ(marksOf<int>({1, Max<int>}, Max<int>), "01") << "no limit, and no count either";
}

}  // namespace
