// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The numbers of small images under masks of all kinds.
#include "logic/analysis/statistics/ComputeStatistics.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

using morvend::imglib::MImage;

template <class T>
MImage row(const std::vector<T>& values)
{
    MImage image(int(values.size()), 1, T());
    std::copy(values.begin(), values.end(), static_cast<T*>(image.data()));
    return image;
}

using Result = std::unique_ptr<const ImageStatistics>;

Result statistics(const MImage& image, const MImage& mask)
{
    testing::internal::CaptureStdout();
    auto result = std::make_unique<ImageStatistics>();
    result->zeros = 77;  // must be overwritten
    ComputeStatistics(result.get()).compute(image, mask);
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("TIME FOR COMPUTING STATISTICS: [0-9]+\n"
                                      "TIME FOR COMPUTING HISTOGRAM: [0-9]+\n"
                                      "TIME FOR COMPUTING CONTRAST: [0-9]+\n"));
    return result;
}

Result statistics(const MImage& image) { return statistics(image, MImage(image, 0U)); }

TEST(Statistics, FirstPixelCountsForTheRangeWhateverItsMask)
{
    const auto result = statistics(row<int>({-1, 5, 9}), row<unsigned>({1, 0, 0}));
    EXPECT_EQ(result->minimum, -1);
    EXPECT_EQ(result->maximum, 9);
    EXPECT_EQ(result->sum, 14);
    EXPECT_FALSE(result->hasNegatives);
}

TEST(Statistics, EveryKindOfMaskExcludesByItsOwnRule)
{
    const auto expectMask = []<class M>(M mark, bool good, bool defective) {
        const auto result = statistics(row<int>({0, 1}), row<M>({M(0), mark}));
        EXPECT_EQ(result->sum == 1, good) << "mask " << double(mark);
        EXPECT_EQ(result->defective == 1, defective) << "mask " << double(mark);
    };
    expectMask(1U, false, false);
    expectMask(2U, false, true);
    expectMask(3U, false, true);
    expectMask(16U, false, true);
    expectMask(0xffffffe0U, true, false);
    expectMask((unsigned char)(0x20), true, false);
    expectMask(1ULL << 40, true, false);
    expectMask(-1, false, false);
    expectMask(-2, false, true);
    expectMask(-32, true, false);
    expectMask((signed char)(-128), true, false);
    expectMask(std::numeric_limits<long long>::min(), true, false);
    expectMask(true, false, false);
    expectMask(0.5F, false, false);
    expectMask(std::numeric_limits<double>::quiet_NaN(), false, false);
}

template <class T>
unsigned int saturated(const std::vector<T>& values, int limit)
{
    MImage image = row<T>(values);
    image.optionalData().set_saturation_value(limit);
    return statistics(image)->saturated;
}

TEST(Statistics, SaturationCountsIntegersAtOrAboveThePositiveLimit)
{
    EXPECT_EQ(saturated<int>({99, 100, 101, -5}, 100), 2U);
    EXPECT_EQ(saturated<unsigned>({4294967295U, 99}, 100), 1U);
    EXPECT_EQ(saturated<unsigned char>({255}, 256), 0U) << "the limit does not wrap";
    EXPECT_EQ(saturated<int>({5, 6}, 0), 0U);
    EXPECT_EQ(saturated<int>({5, 6}, -1), 0U);
    EXPECT_EQ(saturated<float>({1000}, 100), 0U);
    EXPECT_EQ(saturated<char>({100}, 50), 0U);
    EXPECT_EQ(statistics(row<int>({1 << 30}))->saturated, 0U) << "no limit in the header";
}

TEST(Statistics, NanCountsAsZeroAndBecomesTheMinimum)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const auto result = statistics(row<float>({3, nan, 2}));
    EXPECT_EQ(result->zeros, 1U);
    EXPECT_EQ(result->maximum, 3);
    EXPECT_EQ(result->minimum, 2) << "what follows a NaN is not at or above it";
    EXPECT_TRUE(std::isnan(statistics(row<float>({1, nan}))->minimum));
}

TEST(Statistics, HoldADefaultContrastWhatsoeverThePixels)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const MImage& image : {row<int>({1, 2, 3, 1000}), row<float>({nan, nan}), row<int>({5})}) {
        const auto result = statistics(image);
        EXPECT_LT(result->background, result->foreground);
        EXPECT_TRUE(std::isfinite(result->foreground) && std::isfinite(result->background));
    }
}

TEST(Statistics, OfLargestSquaresAreExact)
{
    // 5000 times (2^32 - 1) needs more than 64 bits for the squares.
    MImage image(5000, 1, 0xffffffffU);
    ImageStatistics found;
    ComputeStatistics(&found).computeNumbers(image, MImage(image, 0U));
    EXPECT_EQ(found.sum, 5000 * 4294967295.0);
    EXPECT_EQ(found.mean, 4294967295.0);
    EXPECT_EQ(found.sigma, 0);
}

TEST(GoodPixels, AMaskThatIsChangedIsReadAgain)
{
    MImage image(100, 3, 5);
    MImage mask(image, 0U);
    ImageStatistics found;
    const ComputeStatistics compute(&found);
    for (unsigned int bad = 0; bad < 4; ++bad) {
        compute.computeNumbers(image, mask);
        EXPECT_EQ(found.sum, 1500 - 5 * bad);
        EXPECT_EQ(found.defective, bad);
        static_cast<unsigned int*>(mask.data())[70 * bad] = 2;
    }
    // The same memory as another type is another mask.
    const MImage rough(300, 1, {mask.imageData().buffer(), morvend::datatypes::UINT, 8, 300});
    compute.computeNumbers(image, rough);
    EXPECT_EQ(found.defective, 2U) << "bytes 0 and 280";
}

}  // namespace
