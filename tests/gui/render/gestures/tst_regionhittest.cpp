// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which handle of a region lies under the cursor.
#include "gui/render/gestures/RegionHitTest.h"

#include "tests/gui/render/gestures/Regions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

namespace {

using render::ViewGeometry;
using enum render::RegionHandle;
using Handle = std::optional<render::RegionHandle>;

constexpr Handle off = std::nullopt;

struct Case {
    const char* name;
    StatisticsData region;
    int zoomPower;
    QPoint cursor;
    Handle handle;
};

void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

/// A view of 1000 by 800 pixels whose corner is the image's.
ViewGeometry viewAt(int zoomPower)
{
    return {QSize(5000, 4000), QSize(1000, 800), ViewportData(0, 0, zoomPower, 0, 0)};
}

class HitTest : public testing::TestWithParam<Case> {};

TEST_P(HitTest, Handle)
{
    const Case& row = GetParam();
    EXPECT_EQ(render::regionHandleAt(row.region, viewAt(row.zoomPower), row.cursor), row.handle);
}

std::string nameOf(const testing::TestParamInfo<Case>& row) { return row.param.name; }

// At zoom 4 the line runs from (42, 42) to (442, 42).
const StatisticsData flatLine = regions::line(10, 10, 110, 10);

INSTANTIATE_TEST_SUITE_P(
    Line, HitTest,
    testing::Values(
        Case{"OnTheBegin", flatLine, 2, {42, 42}, LineBegin},
        Case{"InTheMarkOfTheBegin", flatLine, 2, {46, 44}, LineBegin},
        Case{"OnTheRimOfTheMark", flatLine, 2, {47, 42}, Body},
        Case{"BehindTheBegin", flatLine, 2, {37, 42}, off},
        Case{"InTheMarkOfTheEnd", flatLine, 2, {438, 44}, LineEnd},
        Case{"BesideTheLine", flatLine, 2, {200, 44}, Body},
        Case{"TooFarBesideTheLine", flatLine, 2, {200, 45}, off},
        Case{"ZeroLength", regions::line(10, 10, 10, 10), 2, {42, 42}, off},
        Case{"TwoPixelsOnOneScreenPixel", regions::line(8, 8, 9, 8), -2, {8, 2}, off},
        Case{"BackwardsObliqueLine", regions::line(100, 60, 0, 10), 0, {50, 35}, Body},
        Case{"BeginBeforeEndWhereBothAreNear", regions::line(8, 8, 12, 8), 0, {10, 8}, LineBegin}),
    nameOf);

// At zoom 2 the box reaches from (40, 60) to (240, 160).
const StatisticsData plainBox = regions::box(20, 30, 120, 80);
const StatisticsData turnedBox = regions::box(120, 80, 20, 30);

INSTANTIATE_TEST_SUITE_P(
    Box, HitTest,
    testing::Values(
        Case{"Body", plainBox, 1, {140, 110}, Body},
        Case{"LeftEdge", plainBox, 1, {42, 110}, EdgeBeginX},
        Case{"LeftEdgeFromOutside", plainBox, 1, {38, 110}, EdgeBeginX},
        Case{"ThreePixelsInside", plainBox, 1, {43, 110}, Body},
        Case{"ThreePixelsOutside", plainBox, 1, {37, 110}, Body},
        Case{"FourPixelsOutside", plainBox, 1, {36, 110}, off},
        Case{"RightEdge", plainBox, 1, {241, 110}, EdgeEndX},
        Case{"UpperEdge", plainBox, 1, {140, 58}, EdgeBeginY},
        Case{"LowerEdge", plainBox, 1, {140, 162}, EdgeEndY},
        Case{"BelowTheLowerEdge", plainBox, 1, {140, 164}, off},
        Case{"UpperLeftCorner", plainBox, 1, {41, 59}, CornerBeginBegin},
        Case{"LowerLeftCorner", plainBox, 1, {42, 158}, CornerBeginEnd},
        Case{"LowerRightCorner", plainBox, 1, {239, 162}, CornerEndEnd},
        Case{"UpperRightCorner", plainBox, 1, {240, 60}, CornerEndBegin},
        Case{"TurnedUpperLeftCorner", turnedBox, 1, {40, 60}, CornerEndEnd},
        Case{"TurnedLeftEdge", turnedBox, 1, {40, 110}, EdgeEndX},
        Case{"TurnedLowerEdge", turnedBox, 1, {140, 160}, EdgeBeginY},
        Case{"NearerToTheRightOfANarrowBox", regions::box(20, 30, 22, 80), 1, {43, 110}, EdgeEndX},
        Case{"WithoutWidth", regions::box(20, 30, 20, 80), 1, {40, 60}, EdgeBeginY},
        Case{"WithoutSize", regions::box(20, 30, 20, 30), 1, {40, 60}, Body}),
    nameOf);

// At zoom 2 the circle has its centre at (201, 201) and a radius of 100.
const StatisticsData plainCircle = regions::circle(100, 100, 50);

INSTANTIATE_TEST_SUITE_P(
    Circle, HitTest,
    testing::Values(Case{"Centre", plainCircle, 1, {201, 201}, Body},
                    Case{"FourPixelsInside", plainCircle, 1, {297, 201}, Body},
                    Case{"ThreePixelsInside", plainCircle, 1, {298, 201}, CircleRim},
                    Case{"ThreePixelsOutside", plainCircle, 1, {201, 304}, CircleRim},
                    Case{"FourPixelsOutside", plainCircle, 1, {201, 305}, off},
                    Case{"WithoutRadius", regions::circle(100, 100, 0), 1, {201, 203}, CircleRim}),
    nameOf);

// At zoom 2 the ring has its centre at (401, 401) and radii of 100 and 200.
const StatisticsData ring = regions::powder(200.5, 200.5, 50, 100);
const StatisticsData narrow = regions::powder(200.5, 200.5, 50, 56);

INSTANTIATE_TEST_SUITE_P(
    PowderRing, HitTest,
    testing::Values(Case{"Centre", ring, 1, {402, 400}, PowderCentre},
                    Case{"TwoPixelsFromTheCentre", ring, 1, {403, 401}, off},
                    Case{"FarWithin", ring, 1, {496, 401}, off},
                    Case{"InnerRimFromWithin", ring, 1, {497, 401}, InnerRim},
                    Case{"InnerRim", ring, 1, {505, 401}, InnerRim},
                    Case{"Body", ring, 1, {506, 401}, Body},
                    Case{"OuterRim", ring, 1, {597, 401}, OuterRim},
                    Case{"JustBeforeTheOuterRim", ring, 1, {596, 401}, Body},
                    Case{"OuterRimFromOutside", ring, 1, {605, 401}, OuterRim},
                    Case{"Outside", ring, 1, {606, 401}, off},
                    Case{"NarrowFromWithin", narrow, 1, {500, 401}, InnerRim},
                    Case{"NarrowBodyReachesBothRims", narrow, 1, {501, 401}, Body},
                    Case{"NarrowBodyAtTheOuterRim", narrow, 1, {513, 401}, Body},
                    Case{"NarrowFromOutside", narrow, 1, {514, 401}, OuterRim}),
    nameOf);

constexpr int most = std::numeric_limits<int>::max();

INSTANTIATE_TEST_SUITE_P(
    Extremes, HitTest,
    testing::Values(
        Case{"NoRegion", regions::ofType(StatisticsData::None), 0, {0, 0}, off},
        Case{"UnknownKind", regions::between(7, 0, 0, 10, 10), 0, {0, 0}, off},
        Case{"LineOverAllIntegers", regions::line(-most, 10, most, 10), 6, {640, 672}, Body},
        Case{"BoxOverAllIntegers", regions::box(-most, -most, most, most), 6, {5, 5}, Body},
        Case{"CircleFarAway", regions::circle(most, most, 10), 6, {5, 5}, off},
        Case{"RingWithoutCentre",
             regions::powder(std::numeric_limits<double>::infinity(), 0, 5, 10),
             0,
             {5, 5},
             off}),
    nameOf);

TEST(Diameter, IsHeldAlongTheSectionOfAFreeCircleOnly)
{
    constexpr double theta = 0.5235987755982988;  // 30 degrees
    const StatisticsData region = regions::circle(100, 100, 50, theta);
    const ViewGeometry view = viewAt(1);
    const auto at = [&](double along, double beside) {
        const QPointF point = QPointF(201, 201) +
                              along * QPointF(std::cos(theta), std::sin(theta)) +
                              beside * QPointF(-std::sin(theta), std::cos(theta));
        return point.toPoint();
    };
    EXPECT_TRUE(render::nextToDiameter(region, view, {201, 201}));
    EXPECT_TRUE(render::nextToDiameter(region, view, at(80, 0)));
    EXPECT_TRUE(render::nextToDiameter(region, view, at(-80, 1)));
    EXPECT_FALSE(render::nextToDiameter(region, view, at(80, 4)));
    EXPECT_TRUE(render::nextToDiameter(region, view, at(103, 0))) << "a little beyond the rim";
    EXPECT_FALSE(render::nextToDiameter(region, view, at(107, 0)));
    StatisticsData other = region;
    other.roiType = StatisticsData::Box;
    EXPECT_FALSE(render::nextToDiameter(other, view, {201, 201}));
}

}  // namespace
