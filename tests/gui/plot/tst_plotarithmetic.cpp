// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ticks, pixels and read-out of a plot.
#include "gui/plot/AxisTicks.h"
#include "gui/plot/PlotReadout.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace plot;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

constexpr double Gap = std::numeric_limits<double>::quiet_NaN();

/// A plot area of 100 x 60 pixels at (10, 20).
PlotFrame frame(bool logarithmic = false, int padding = 0)
{
    return {{120, 100}, 10, 20, 10, 20, padding, padding, logarithmic};
}

TEST(AxisTicks, AreRoundValuesInside)
{
    EXPECT_THAT(axisTicks(0, 100, 4), ElementsAre(0, 20, 40, 60, 80, 100));
    EXPECT_THAT(axisTicks(100, 0, 4), ElementsAre(0, 20, 40, 60, 80, 100));
    EXPECT_THAT(axisTicks(-1.5, 1.5, 2), ElementsAre(-1, 0, 1));
    EXPECT_THAT(axisTicks(3, 3 + 1e-9, 4), ElementsAre(3));
    EXPECT_THAT(axisTicks(0, Gap, 4), IsEmpty());
    EXPECT_THAT(axisTicks(-8e307, 8e307, 2), testing::Not(IsEmpty()));
    // Beside such numbers a distance vanishes.
    EXPECT_LE(axisTicks(1e17, 1e17 + 64, 4).size(), 12U);
}

TEST(PlotScale, PutsRangesOnThePlotArea)
{
    const PlotScale scale({{0, 0, 0}, {5, 10, 0}, {10, 5, 0}}, frame(false, 10));
    EXPECT_THAT(scale.graph, ElementsAre(QPointF(10, 70), QPointF(60, 30), QPointF(110, 50)));
    EXPECT_EQ(scale.valueAt(60), 5);
    EXPECT_THAT(scale.xTicks, ElementsAre(Pair(10, 0), Pair(30, 2), Pair(50, 4), Pair(70, 6),
                                          Pair(90, 8), Pair(110, 10)));
    // No tick within a sixth of the height, here 10 pixels, of the one before.
    EXPECT_THAT(scale.yTicks, ElementsAre(Pair(38, 8), Pair(54, 4), Pair(70, 0)));
}

TEST(PlotScale, LeavesMaskedRowsOutOfTheHeight)
{
    const PlotScale scale({{0, -500, 1}, {1, 1, 0}, {2, Gap, 0}, {3, 3, 0}, {4, 500, 1}}, frame());
    EXPECT_EQ(scale.graph.front(), QPointF(10, 80));
    EXPECT_EQ(scale.graph[1].y(), 80);
    EXPECT_EQ(scale.graph[2].y(), 80);
    EXPECT_EQ(scale.graph[3].y(), 20);
    EXPECT_EQ(scale.graph.back(), QPointF(110, 80));
    const PlotScale nothing({{0, 5, 1}, {1, 6, 1}}, frame());
    EXPECT_THAT(nothing.yTicks, IsEmpty());
    EXPECT_EQ(nothing.graph.front().y(), 80);
}

TEST(PlotScale, OfAFlatCurveHasOneTickInTheMiddle)
{
    for (const bool logarithmic : {false, true}) {
        const PlotScale scale({{0, -7, 0}, {1, -7, 0}}, frame(logarithmic));
        EXPECT_THAT(scale.yTicks, ElementsAre(Pair(50, -7)));
        EXPECT_EQ(scale.graph.front().y(), 50);
    }
    EXPECT_THAT(PlotScale({{3, 1, 0}}, frame()).graph, ElementsAre(QPointF(10, 50)));
}

TEST(PlotScale, LogarithmicTicksNeverCrowd)
{
    for (const double sign : {1.0, -1.0}) {
        const PlotScale scale({{0, 0, 0}, {1, sign * 10, 0}, {2, sign * 1000, 0}}, frame(true));
        // 200 * y / 1000 under asinh, between 0 and asinh(200).
        const double part = std::asinh(2.0) / std::asinh(200.0);
        EXPECT_NEAR(scale.graph[1].y(), sign > 0 ? 80 - 60 * part : 20 + 60 * part, 1e-9);
        ASSERT_GE(scale.yTicks.size(), 3U);
        for (auto it = std::next(scale.yTicks.begin()); it != scale.yTicks.end(); ++it)
            EXPECT_GE(it->first - std::prev(it)->first, 10);
    }
}

TEST(PlotReadout, FindsTheHighestPointOrLiesBetweenTwo)
{
    // Points at pixels 10, 60, 60, 60.5 and 110.
    const Rows rows{{0, 1, 0}, {5, 2, 0}, {5, 8, 0}, {5.05, 4, 0}, {10, 0, 0}};
    const PlotScale scale(rows, frame());
    const auto at = [&](double x) {
        const auto found = readoutAt(rows, scale, x);
        return found ? std::pair(found->x, found->y) : std::pair(-1.0, -1.0);
    };
    EXPECT_THAT(at(9), Pair(-1, -1));
    EXPECT_THAT(at(10), Pair(0, 1));
    EXPECT_THAT(at(35), Pair(2.5, 1.5));
    EXPECT_THAT(at(60), Pair(5, 8));
    EXPECT_THAT(at(60.2), Pair(5.05, 4));
    EXPECT_THAT(at(110), Pair(10, 0));
    EXPECT_THAT(at(110.5), Pair(-1, -1));
    EXPECT_EQ(readoutAt(rows, scale, 35)->point,
              QPointF(35, (scale.graph[0].y() + scale.graph[1].y()) / 2));
    EXPECT_FALSE(readoutAt({}, PlotScale(), 10));
}

}  // namespace
