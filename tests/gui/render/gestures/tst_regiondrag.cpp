// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a drag makes of a region of interest.
#include "gui/render/gestures/RegionDrag.h"

#include "gui/render/gestures/NewRegion.h"
#include "tests/support/Regions.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace render;
using enum RegionHandle;
using Data = StatisticsData;

ViewGeometry viewAt(int zoomPower, double offsetX = 0, double offsetY = 0)
{
    return {QSize(5000, 4000), QSize(1000, 800), ViewportData(offsetX, offsetY, zoomPower, 0, 0)};
}

/// A record whose fields all differ.
Data full(int type)
{
    Data region = regions::between(type, 100, 200, 300, 400);
    region.circleX = 150;
    region.circleY = 250;
    region.radius = 30;
    region.innerRadius = 40;
    region.outerRadius = 60;
    region.powderX = 200;
    region.powderY = 200;
    return region;
}

TEST(RegionDrag, EachHandleMovesItsFieldsByWholePixels)
{
    struct Row {
        RegionHandle handle;
        int type;
        std::vector<int Data::*> horizontal, vertical;
    };
    for (const auto& [handle, type, horizontal, vertical] :
         std::initializer_list<Row>{{Body,
                                     Data::Box,
                                     {&Data::beginX, &Data::endX, &Data::circleX},
                                     {&Data::beginY, &Data::endY, &Data::circleY}},
                                    {LineBegin, Data::Line, {&Data::beginX}, {&Data::beginY}},
                                    {LineEnd, Data::Line, {&Data::endX}, {&Data::endY}},
                                    {EdgeBeginX, Data::Box, {&Data::beginX}, {}},
                                    {EdgeBeginY, Data::Box, {}, {&Data::beginY}},
                                    {EdgeEndX, Data::Box, {&Data::endX}, {}},
                                    {EdgeEndY, Data::Box, {}, {&Data::endY}},
                                    {CornerBeginBegin, Data::Box, {&Data::beginX}, {&Data::beginY}},
                                    {CornerBeginEnd, Data::Box, {&Data::beginX}, {&Data::endY}},
                                    {CornerEndEnd, Data::Box, {&Data::endX}, {&Data::endY}},
                                    {CornerEndBegin, Data::Box, {&Data::endX}, {&Data::beginY}},
                                    {CircleRim, Data::Circle, {}, {}}}) {
        Data expected = full(type);
        for (const auto field : horizontal)
            expected.*field += 3;
        for (const auto field : vertical)
            expected.*field -= 5;
        // From (150, 250) to the cursor at (53, 45), whatever the way to there.
        if (handle == CircleRim)
            expected.radius = 226;
        RegionHandle held = handle;
        RegionDrag drag({50, 50});
        EXPECT_EQ(drag.move(full(type), viewAt(0), {53, 45}, held), expected) << int(handle);
        EXPECT_EQ(held, handle);
    }
}

TEST(RegionDrag, SlowDragsLoseNothing)
{
    struct Row {
        int zoomPower;
        std::vector<int> cursor, moved;  // positions of one drag, how far the region has come
    };
    for (const auto& [zoomPower, cursor, moved] :
         std::initializer_list<Row>{{-2, {1, 2, 0}, {4, 8, 0}},
                                    {-1, {1, -3}, {2, -6}},
                                    {0, {1, 3, 2}, {1, 3, 2}},
                                    {1, {1, 2, 3, 5}, {0, 1, 1, 2}},
                                    {2, {3, 6, 9}, {0, 1, 2}},
                                    {3, {7, 8, 23, 24}, {0, 1, 2, 3}},
                                    {4, {15, 17, 31, 32}, {0, 1, 1, 2}},
                                    {5, {31, -31, -32}, {0, 0, -1}},
                                    {6, {40, 80, 120, 128}, {0, 1, 1, 2}}}) {
        Data region = full(Data::Box);
        RegionDrag drag({0, 0});
        auto handle = Body;
        for (std::size_t i = 0; i < cursor.size(); ++i) {
            const auto after = drag.move(region, viewAt(zoomPower), {cursor[i], 0}, handle);
            EXPECT_EQ(after.has_value(), moved[i] != region.beginX - 100);
            region = after.value_or(region);
            EXPECT_EQ(region.beginX, 100 + moved[i]) << zoomPower;
            EXPECT_EQ(region.beginY, 200);
        }
    }
}

/// A drag along a row from x = `start` must give these radii and hold these handles.
struct RingStep {
    int cursor, inner, outer;
    RegionHandle handle;
};
void expectRings(int start, RegionHandle handle, const std::vector<RingStep>& steps)
{
    Data region = full(Data::CentredCircle);
    RegionDrag drag({start, 200});
    for (const RingStep& step : steps) {
        region = drag.move(region, viewAt(0), {step.cursor, 200}, handle).value();
        EXPECT_EQ(region.innerRadius, step.inner) << step.cursor;
        EXPECT_EQ(region.outerRadius, step.outer) << step.cursor;
        EXPECT_EQ(handle, step.handle) << step.cursor;
    }
    EXPECT_EQ(region.powderX, 200);
}

TEST(RegionDrag, TheBodyOfARingGrowsAndShrinksWithTheDistanceFromItsCentre)
{
    // A ring keeps its inner radius above 0.
    expectRings(250, Body, {{257, 47, 67, Body}, {212, 2, 22, Body}, {210, 2, 22, Body}});
}

TEST(RegionDrag, RimsOfARingThatCrossSwapRoles)
{
    expectRings(240, InnerRim,
                {{245, 45, 60, InnerRim},
                 {259, 59, 60, InnerRim},
                 {260, 59, 60, OuterRim},
                 {275, 59, 75, OuterRim},
                 {262, 59, 62, OuterRim},
                 {255, 55, 62, InnerRim},
                 {200, 0, 62, InnerRim}});
}

TEST(RegionDrag, RecordsAtTheEndOfIntegersStayThere)
{
    constexpr int most = std::numeric_limits<int>::max();
    RegionDrag drag({0, 0});
    auto handle = Body;
    const auto after =
        drag.move(regions::box(most, -most, most, -most), viewAt(-2), {100, -100}, handle);
    ASSERT_TRUE(after);
    EXPECT_EQ(after->beginX, most);
    EXPECT_EQ(after->endY, -most - 1);
}

TEST(RegionDrag, TheCentreOfARingStaysFivePixelsWithinTheView)
{
    const Data region = full(Data::CentredCircle);
    const ViewGeometry view = viewAt(2, 10.25, 20.5);
    const auto moved = recentred(region, view, {5, 795});
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->powderX, 10.25 + 5.0 / 4);
    EXPECT_EQ(moved->powderY, 20.5 + 795.0 / 4);
    for (const QPoint cursor :
         {QPoint(4, 400), QPoint(996, 400), QPoint(500, 4), QPoint(500, 796), QPoint(-100, 400)})
        EXPECT_FALSE(recentred(region, view, cursor));
    const ViewGeometry small({100, 100}, {8, 8}, ViewportData(0, 0, 0, 0, 0));
    EXPECT_FALSE(recentred(region, small, {4, 4}));
}

TEST(NewRegion, KeepsItsRadiiWithoutABeamCentre)
{
    NewRegion gesture;
    Data region = gesture.begin(full(Data::CentredCircle), {10, 20}, {{500, 600}, 77});
    region = gesture.extend(region, viewAt(0), {30, 40}, 90);
    region = gesture.extend(region, viewAt(0), {30, 40}, -1);
    EXPECT_EQ(region.innerRadius, 77);
    EXPECT_EQ(region.outerRadius, 90);
}

}  // namespace
