// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rows of curves that are too long to be drawn.
#include "gui/panels/SeriesRows.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(SeriesRows, OfALongCurveKeepTheEndsTheExtremesAndTheGaps)
{
    constexpr int Images = 50'000;
    std::vector<SeriesPoint> points;
    for (int i = 1; i <= Images; ++i)
        points.push_back({.number = i, .state = SeriesPoint::State::Good, .mean = double(i % 7)});
    points[20'000].mean = 1000;
    points[30'000].mean = -1000;
    points[40'000].state = SeriesPoint::State::Failed;
    RegionSeries::News state;
    state.first = 1;
    state.last = Images;
    const auto rows = seriesRows(points, state, SeriesPoint::Quantity::Mean, 300);
    EXPECT_LE(rows.size(), 300U);
    EXPECT_GT(rows.size(), 150U);
    EXPECT_EQ(rows.front(), (std::vector<double>{1, 1, 0})) << "an end with a number keeps it";
    EXPECT_EQ(rows.back(), (std::vector<double>{Images, Images % 7, 0}));
    for (const std::vector<double>& kept :
         {std::vector<double>{20'001, 1000, 0}, {30'001, -1000, 0}, {40'001, 0, 1}})
        EXPECT_EQ(std::ranges::count(rows, kept), 1) << kept[0];
    EXPECT_TRUE(std::ranges::is_sorted(rows)) << "by their numbers";
    EXPECT_EQ(seriesRows(points, state, SeriesPoint::Quantity::Mean, Images).size(), Images);
}

}  // namespace
