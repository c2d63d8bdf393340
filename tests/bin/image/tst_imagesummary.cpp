// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Exact numbers over all pixels, for every pixel type.
#include "bin/image/ImageSummary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using morvend::imglib::MImage;
using namespace tarvik::tool;

namespace {

template <class T>
MImage rowOf(const std::vector<T>& values)
{
    MImage image(static_cast<int>(values.size()), 1, T(0));
    T* pixels = static_cast<T*>(image.data());
    for (std::size_t i = 0; i < values.size(); ++i)
        pixels[i] = values[i];
    return image;
}

template <class T>
std::string summaryOf(const std::vector<T>& values)
{
    const ImageSummary summary = ImageSummary::of(rowOf(values));
    return summary.minimum.json() + " " + summary.maximum.json() + " " + summary.sum.json();
}

}  // namespace

TEST(ImageSummary, IsExactForIntegersOfEveryWidth)
{
    using U64 = unsigned long long;
    constexpr U64 Most = std::numeric_limits<U64>::max();
    constexpr long long Least = std::numeric_limits<long long>::min();
    EXPECT_EQ(summaryOf<bool>({true, false, true}), "0 1 2");
    EXPECT_EQ(summaryOf<char>({'\x7f', '\x01'}), "1 127 128");
    EXPECT_EQ(summaryOf<signed char>({-128, -128, 127}), "-128 127 -129");
    EXPECT_EQ(summaryOf<unsigned char>({255, 255, 0}), "0 255 510");
    EXPECT_EQ(summaryOf<short>({-32768, -1}), "-32768 -1 -32769");
    EXPECT_EQ(summaryOf<unsigned>({4294967295u, 4294967295u}), "4294967295 4294967295 8589934590");
    EXPECT_EQ(summaryOf<U64>({Most, Most, Most}),
              "18446744073709551615 18446744073709551615 55340232221128654845");
    EXPECT_EQ(summaryOf<long long>({Least, Least}),
              "-9223372036854775808 -9223372036854775808 -18446744073709551616");
}

TEST(ImageSummary, FloatsReadBackAsTheSameValue)
{
    EXPECT_EQ(summaryOf<float>({0.1f, 0.5f}), "0.10000000149011612 0.5 0.6000000014901161");
    EXPECT_EQ(ImageSummary::of(rowOf<float>({0.1f})).minimum.text(), "0.1");
    EXPECT_EQ(summaryOf<double>({1e300, -1e-300}), "-1e-300 1e+300 1e+300");
    EXPECT_EQ(summaryOf<float>({16777216.f, 1.f, 1.f}), "1 16777216 16777218");
}

TEST(ImageSummary, WhatIsNoNumberIsAText)
{
    constexpr float Infinite = std::numeric_limits<float>::infinity();
    constexpr float NoNumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(summaryOf<float>({1, Infinite}), R"(1 "inf" "inf")");
    EXPECT_EQ(summaryOf<float>({-Infinite, 1}), R"("-inf" 1 "-inf")");
    EXPECT_EQ(summaryOf<float>({-Infinite, Infinite}), R"("-inf" "inf" "nan")");
    EXPECT_EQ(summaryOf<float>({1, -NoNumber, 2}), R"("nan" "nan" "nan")");
    EXPECT_EQ(summaryOf<float>({NoNumber, 1, 2}), R"("nan" "nan" "nan")");
}

TEST(ImageSummary, RefusesTheEmptyImage)
{
    EXPECT_THROW(ImageSummary::of(MImage()), morvend::MNotImplementedException);
}

TEST(ImageSummary, CountsAndDigestsPixels)
{
    EXPECT_EQ(countNonZero(rowOf<unsigned short>({0, 1, 256, 0})), 2u);
    EXPECT_EQ(countNonZero(rowOf<float>({-0.f, 1.f})), 1u);
    // SHA-256 of the three letters "abc", a published test value.
    EXPECT_EQ(pixelDigest(rowOf<unsigned char>({'a', 'b', 'c'})),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(pixelValue(rowOf<signed char>({1, -7}), 1, 0).text(), "-7");
}
