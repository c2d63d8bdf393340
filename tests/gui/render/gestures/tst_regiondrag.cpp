// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a drag makes of a region of interest.
#include "gui/render/gestures/RegionDrag.h"

#include "gui/render/gestures/NewRegion.h"
#include "tests/gui/render/gestures/Regions.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <ostream>
#include <vector>

namespace {

using render::NewRegion;
using render::RegionDrag;
using render::RegionHandle;
using render::ViewGeometry;

constexpr int most = std::numeric_limits<int>::max();

ViewGeometry viewAt(int zoomPower, double offsetX = 0, double offsetY = 0)
{
    return {QSize(5000, 4000), QSize(1000, 800), ViewportData(offsetX, offsetY, zoomPower, 0, 0)};
}

/// A record whose fields all differ.
StatisticsData full(int type)
{
    StatisticsData region = regions::between(type, 100, 200, 300, 400);
    region.circleX = 150;
    region.circleY = 250;
    region.radius = 30;
    region.innerRadius = 40;
    region.outerRadius = 60;
    region.powderX = 200;
    region.powderY = 200;
    return region;
}

/// Fields that a drag by (3, -5) changes, by name.
struct HandleCase {
    const char* name;
    int handle;
    int type;
    void (*change)(StatisticsData&);
};

void PrintTo(const HandleCase& row, std::ostream* out) { *out << row.name; }

class Handles : public testing::TestWithParam<HandleCase> {};

TEST_P(Handles, DragMovesItsFieldsByWholePixels)
{
    const StatisticsData before = full(GetParam().type);
    StatisticsData expected = before;
    GetParam().change(expected);
    auto handle = static_cast<RegionHandle>(GetParam().handle);
    RegionDrag drag({50, 50});
    const auto after = drag.move(before, viewAt(0), {53, 45}, handle);
    ASSERT_TRUE(after);
    EXPECT_EQ(*after, expected);
    EXPECT_EQ(static_cast<int>(handle), GetParam().handle);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Handles,
    testing::Values(
        HandleCase{"Body", 0, StatisticsData::Box,
                   [](StatisticsData& r) {
                       r.beginX += 3, r.endX += 3, r.circleX += 3;
                       r.beginY -= 5, r.endY -= 5, r.circleY -= 5;
                   }},
        HandleCase{"LineBegin", 1, StatisticsData::Line,
                   [](StatisticsData& r) { r.beginX += 3, r.beginY -= 5; }},
        HandleCase{"LineEnd", 2, StatisticsData::Line,
                   [](StatisticsData& r) { r.endX += 3, r.endY -= 5; }},
        HandleCase{"EdgeBeginX", 3, StatisticsData::Box, [](StatisticsData& r) { r.beginX += 3; }},
        HandleCase{"EdgeBeginY", 4, StatisticsData::Box, [](StatisticsData& r) { r.beginY -= 5; }},
        HandleCase{"EdgeEndX", 5, StatisticsData::Box, [](StatisticsData& r) { r.endX += 3; }},
        HandleCase{"EdgeEndY", 6, StatisticsData::Box, [](StatisticsData& r) { r.endY -= 5; }},
        HandleCase{"CornerBeginBegin", 7, StatisticsData::Box,
                   [](StatisticsData& r) { r.beginX += 3, r.beginY -= 5; }},
        HandleCase{"CornerBeginEnd", 8, StatisticsData::Box,
                   [](StatisticsData& r) { r.beginX += 3, r.endY -= 5; }},
        HandleCase{"CornerEndEnd", 9, StatisticsData::Box,
                   [](StatisticsData& r) { r.endX += 3, r.endY -= 5; }},
        HandleCase{"CornerEndBegin", 10, StatisticsData::Box,
                   [](StatisticsData& r) { r.beginY -= 5, r.endX += 3; }},
        // From (150, 250) to the cursor at (53, 45), whatever the way to there.
        HandleCase{"CircleRim", 11, StatisticsData::Circle,
                   [](StatisticsData& r) { r.radius = 226; }}),
    [](const auto& row) { return std::string(row.param.name); });

/// Cursor positions of one drag at a zoom, and how far the region has come after each.
struct ResidualCase {
    const char* name;
    int zoomPower;
    std::vector<int> cursor;
    std::vector<int> moved;
};

void PrintTo(const ResidualCase& row, std::ostream* out) { *out << row.name; }

class Residuals : public testing::TestWithParam<ResidualCase> {};

TEST_P(Residuals, SlowDragsLoseNothing)
{
    const auto& [name, zoomPower, cursor, moved] = GetParam();
    StatisticsData region = full(StatisticsData::Box);
    RegionDrag drag({0, 0});
    auto handle = RegionHandle::Body;
    for (std::size_t i = 0; i < cursor.size(); ++i) {
        const auto after = drag.move(region, viewAt(zoomPower), {cursor[i], 0}, handle);
        EXPECT_EQ(after.has_value(), moved[i] != region.beginX - 100);
        region = after.value_or(region);
        EXPECT_EQ(region.beginX, 100 + moved[i]);
        EXPECT_EQ(region.beginY, 200);
    }
}

INSTANTIATE_TEST_SUITE_P(Zooms, Residuals,
                         testing::Values(ResidualCase{"Quarter", -2, {1, 2, 0}, {4, 8, 0}},
                                         ResidualCase{"Half", -1, {1, -3}, {2, -6}},
                                         ResidualCase{"One", 0, {1, 3, 2}, {1, 3, 2}},
                                         ResidualCase{"Two", 1, {1, 2, 3, 5}, {0, 1, 1, 2}},
                                         ResidualCase{"Four", 2, {3, 6, 9}, {0, 1, 2}},
                                         ResidualCase{"Eight", 3, {7, 8, 23, 24}, {0, 1, 2, 3}},
                                         ResidualCase{"Sixteen", 4, {15, 17, 31, 32}, {0, 1, 1, 2}},
                                         ResidualCase{"ThirtyTwo", 5, {31, -31, -32}, {0, 0, -1}},
                                         ResidualCase{
                                             "SixtyFour", 6, {40, 80, 120, 128}, {0, 1, 1, 2}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RegionDrag, TheBodyOfARingGrowsAndShrinksWithTheDistanceFromItsCentre)
{
    RegionDrag drag({250, 200});
    auto handle = RegionHandle::Body;
    StatisticsData region = full(StatisticsData::CentredCircle);
    region = drag.move(region, viewAt(0), {257, 200}, handle).value();
    EXPECT_EQ(region.innerRadius, 47);
    EXPECT_EQ(region.outerRadius, 67);
    region = drag.move(region, viewAt(0), {212, 200}, handle).value();
    EXPECT_EQ(region.innerRadius, 2);
    EXPECT_EQ(region.outerRadius, 22);
    region = drag.move(region, viewAt(0), {210, 200}, handle).value();
    EXPECT_EQ(region.innerRadius, 2) << "a ring keeps its inner radius above 0";
    EXPECT_EQ(region.powderX, 200);
}

TEST(RegionDrag, RimsOfARingThatCrossSwapRoles)
{
    struct Step {
        int cursor;
        int inner;
        int outer;
        RegionHandle handle;
    };
    using enum RegionHandle;
    StatisticsData region = full(StatisticsData::CentredCircle);
    auto handle = InnerRim;
    RegionDrag drag({240, 200});
    for (const Step& step :
         {Step{245, 45, 60, InnerRim}, Step{259, 59, 60, InnerRim}, Step{260, 59, 60, OuterRim},
          Step{275, 59, 75, OuterRim}, Step{262, 59, 62, OuterRim}, Step{255, 55, 62, InnerRim},
          Step{200, 0, 62, InnerRim}}) {
        region = drag.move(region, viewAt(0), {step.cursor, 200}, handle).value();
        EXPECT_EQ(region.innerRadius, step.inner);
        EXPECT_EQ(region.outerRadius, step.outer);
        EXPECT_EQ(handle, step.handle);
    }
}

TEST(RegionDrag, RecordsAtTheEndOfIntegersStayThere)
{
    RegionDrag drag({0, 0});
    auto handle = RegionHandle::Body;
    const auto after =
        drag.move(regions::box(most, -most, most, -most), viewAt(-2), {100, -100}, handle);
    ASSERT_TRUE(after);
    EXPECT_EQ(after->beginX, most);
    EXPECT_EQ(after->endY, -most - 1);
}

TEST(RegionDrag, TheCentreOfARingStaysFivePixelsWithinTheView)
{
    const StatisticsData region = full(StatisticsData::CentredCircle);
    const ViewGeometry view = viewAt(2, 10.25, 20.5);
    const auto moved = render::recentred(region, view, {5, 795});
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->powderX, 10.25 + 5.0 / 4);
    EXPECT_EQ(moved->powderY, 20.5 + 795.0 / 4);
    for (const QPoint cursor :
         {QPoint(4, 400), QPoint(996, 400), QPoint(500, 4), QPoint(500, 796), QPoint(-100, 400)})
        EXPECT_FALSE(render::recentred(region, view, cursor));
    const ViewGeometry small({100, 100}, {8, 8}, ViewportData(0, 0, 0, 0, 0));
    EXPECT_FALSE(render::recentred(region, small, {4, 4}));
}

TEST(RegionDrag, TheSectionOfACircleTurnsToTheCursor)
{
    const StatisticsData region = regions::circle(100, 100, 50);
    EXPECT_DOUBLE_EQ(render::turned(region, viewAt(1), {301, 201}).theta, 0);
    EXPECT_DOUBLE_EQ(render::turned(region, viewAt(1), {201, 301}).theta, std::numbers::pi / 2);
    EXPECT_DOUBLE_EQ(render::turned(region, viewAt(1), {101, 101}).theta,
                     -3 * std::numbers::pi / 4);
}

TEST(NewRegion, FillsTheFieldsOfAllKinds)
{
    NewRegion gesture;
    StatisticsData region;
    region.roiType = StatisticsData::Line;
    region = gesture.begin(region, {10.9, 20.9}, {{500, 600}, 77});
    StatisticsData expected = regions::line(10, 20, 10, 20);
    expected.circleX = 10;
    expected.circleY = 20;
    EXPECT_EQ(region, expected) << "a ring is not touched";
    EXPECT_TRUE(std::isnan(region.powderX));

    region = gesture.extend(region, viewAt(1), {100, 120}, 33);
    EXPECT_EQ(region.beginX, 10);
    EXPECT_EQ(region.endX, 50);
    EXPECT_EQ(region.endY, 60);
    EXPECT_EQ(region.radius, 56) << "truncated";
    EXPECT_DOUBLE_EQ(region.theta, std::atan2(120 - 41, 100 - 21));
    EXPECT_EQ(region.innerRadius, 0);
    EXPECT_EQ(region.outerRadius, 33);
}

TEST(NewRegion, RingsGrowFromTheRadiusOfThePressBothWays)
{
    NewRegion gesture;
    const StatisticsData before = regions::line(1, 2, 3, 4);
    StatisticsData region = before;
    region.roiType = StatisticsData::CentredCircle;
    region = gesture.begin(region, {10.9, 20.9}, {{500.5, 600.25}, 77});
    EXPECT_EQ(region.powderX, 500.5);
    EXPECT_EQ(region.powderY, 600.25);
    EXPECT_EQ(region.innerRadius, 77);
    EXPECT_EQ(region.outerRadius, 77);
    EXPECT_EQ(region.beginX, before.beginX);
    EXPECT_EQ(region.endY, before.endY);
    for (const auto& [radius, inner, outer] :
         {std::array{90, 77, 90}, std::array{77, 77, 77}, std::array{60, 60, 77}}) {
        region = gesture.extend(region, viewAt(0), {30, 40}, radius);
        EXPECT_EQ(region.innerRadius, inner);
        EXPECT_EQ(region.outerRadius, outer);
    }
    region = gesture.extend(region, viewAt(0), {35, 40}, -1);
    EXPECT_EQ(region.innerRadius, 60) << "without beam centre radii stay";
    EXPECT_EQ(region.outerRadius, 77);
}

}  // namespace
