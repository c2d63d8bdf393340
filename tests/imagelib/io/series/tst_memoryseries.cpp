// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series of images that a program pushes.
#include "imagelib/io/MImageSeries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace morvend;
using imglib::MImage;
using imglib::MImageSeries;

namespace {

MImage imageOf(int value) { return MImage(1, 1, value); }

std::vector<int> valuesOf(const MImageSeries& series)
{
    std::vector<int> values;
    for (int number = series.first(); number >= 0; number = series.next(number))
        values.push_back(series.at(static_cast<std::size_t>(number)).pixel<int>(0, 0, -1));
    return values;
}

}  // namespace

TEST(SeriesInMemory, IsEmptyUntilTheFirstImage)
{
    MImageSeries series(25);
    EXPECT_TRUE(series.empty());
    EXPECT_EQ(series.first(), -1);
    EXPECT_EQ(series.last(), -1);
    EXPECT_EQ(series.next(-1), -1);
    EXPECT_EQ(series.formatName(), "");
    EXPECT_THROW(series.at(0), MOutOfRangeException);
    series.update();

    series.pushBack(imageOf(7));
    EXPECT_FALSE(series.empty());
    EXPECT_EQ(series.first(), 0);
    EXPECT_EQ(series.last(), 0);
    EXPECT_EQ(series[0].pixel<int>(0, 0, -1), 7);
    EXPECT_EQ(series.formatName(), "memory");
}

TEST(SeriesInMemory, TheOldestImagesGoAndNumbersStay)
{
    MImageSeries series(3);
    for (int value = 10; value < 15; ++value)
        series.pushBack(imageOf(value));
    EXPECT_EQ(series.first(), 2);
    EXPECT_EQ(series.last(), 4);
    EXPECT_EQ(valuesOf(series), (std::vector<int>{12, 13, 14}));
    EXPECT_THROW(series.at(1), MOutOfRangeException);
    EXPECT_THROW(series.at(5), MOutOfRangeException);
    EXPECT_THROW(series.at(std::size_t(-1)), MOutOfRangeException);
}

TEST(SeriesInMemory, ABoundOfZeroKeepsTheLastImage)
{
    MImageSeries series(0);
    series.pushBack(imageOf(1));
    series.pushBack(imageOf(2));
    EXPECT_EQ(valuesOf(series), std::vector<int>{2});
    EXPECT_EQ(series.last(), 1);
}

TEST(SeriesInMemory, OpeningByABoundStartsAnew)
{
    MImageSeries series(1);
    series.pushBack(imageOf(1));
    series.open(2);
    EXPECT_TRUE(series.empty());
    for (int value = 5; value < 8; ++value)
        series.pushBack(imageOf(value));
    EXPECT_EQ(valuesOf(series), (std::vector<int>{6, 7}));
    EXPECT_EQ(series.first(), 1);
    EXPECT_THROW(series.open(-1), MBadParameterException);
    EXPECT_EQ(series.last(), 2);
}

TEST(SeriesInMemory, ImagesHaveNoFile)
{
    MImageSeries series(25);
    series.pushBack(imageOf(1));
    EXPECT_THROW(series.pathToImage(0), MRuntimeException);
}
