// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which handle of a region lies under the cursor.
#include "gui/render/gestures/RegionHitTest.h"

#include "tests/support/Regions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using render::ViewGeometry;
using Handle = render::RegionHandle;

/// A view of 1000 by 800 pixels whose corner is the image's.
ViewGeometry viewAt(int zoomPower)
{
    return {QSize(5000, 4000), QSize(1000, 800), ViewportData(0, 0, zoomPower, 0, 0)};
}

std::string nameOf(std::optional<Handle> handle)
{
    const char* const names[] = {"body",        "begin",     "end",         "beginX",
                                 "beginY",      "endX",      "endY",        "beginX,beginY",
                                 "beginX,endY", "endX,endY", "endX,beginY", "rim",
                                 "inner",       "outer",     "centre"};
    return handle ? names[static_cast<std::size_t>(*handle)] : "off";
}

/// The handles along a row from its left end to x = 999, each with the column where it begins.
std::string along(int y, const StatisticsData& region, int zoomPower)
{
    std::string text, last;
    for (int x = 0; x < 1000; ++x) {
        const std::string name = nameOf(render::regionHandleAt(region, viewAt(zoomPower), {x, y}));
        if (name != last)
            text += (x ? " " + std::to_string(x) + " " : "") + name;
        last = name;
    }
    return text;
}

TEST(RegionHitTest, Line)
{
    // At zoom 4 the line runs from (42, 42) to (442, 42).
    const StatisticsData flat = regions::line(10, 10, 110, 10);
    EXPECT_EQ(along(42, flat, 2), "off 38 begin 47 body 438 end 447 off");
    EXPECT_EQ(along(44, flat, 2), "off 38 begin 47 body 438 end 447 off");
    EXPECT_EQ(along(45, flat, 2), "off 39 begin 46 off 439 end 446 off");
    EXPECT_EQ(along(42, regions::line(10, 10, 10, 10), 2), "off") << "without length";
    EXPECT_EQ(along(2, regions::line(8, 8, 9, 8), -2), "begin 7 off")
        << "on one pixel of the screen";
    EXPECT_EQ(along(35, regions::line(100, 60, 0, 10), 0), "off 46 body 55 off")
        << "oblique, backwards";
    EXPECT_EQ(along(8, regions::line(8, 8, 12, 8), 0), "off 4 begin 13 end 17 off") << "short";
}

TEST(RegionHitTest, Box)
{
    // At zoom 2 the box reaches from (40, 60) to (240, 160).
    const StatisticsData plain = regions::box(20, 30, 120, 80);
    const StatisticsData turned = regions::box(120, 80, 20, 30);
    EXPECT_EQ(along(56, plain, 1), "off");
    EXPECT_EQ(along(57, plain, 1), "off 37 body 38 beginX 43 body 238 endX 243 body 244 off");
    EXPECT_EQ(along(58, plain, 1),
              "off 37 beginY 38 beginX,beginY 43 beginY 238 endX,beginY 243 beginY 244 off");
    EXPECT_EQ(along(110, plain, 1), "off 37 body 38 beginX 43 body 238 endX 243 body 244 off");
    EXPECT_EQ(along(162, plain, 1),
              "off 37 endY 38 beginX,endY 43 endY 238 endX,endY 243 endY 244 off");
    EXPECT_EQ(along(164, plain, 1), "off");
    EXPECT_EQ(along(60, turned, 1),
              "off 37 endY 38 endX,endY 43 endY 238 beginX,endY 243 endY 244 off");
    EXPECT_EQ(along(110, turned, 1), "off 37 body 38 endX 43 body 238 beginX 243 body 244 off");
    EXPECT_EQ(along(160, turned, 1),
              "off 37 beginY 38 endX,beginY 43 beginY 238 beginX,beginY 243 beginY 244 off");
    EXPECT_EQ(along(110, regions::box(20, 30, 22, 80), 1),
              "off 37 body 38 beginX 42 body 43 endX 47 body 48 off")
        << "the nearer edge";
    EXPECT_EQ(along(60, regions::box(20, 30, 20, 80), 1), "off 37 beginY 44 off")
        << "without width";
    EXPECT_EQ(along(60, regions::box(20, 30, 20, 30), 1), "off 37 body 44 off") << "without size";
}

TEST(RegionHitTest, Circles)
{
    // At zoom 2 the circle has its centre at (201, 201) and a radius of 100.
    EXPECT_EQ(along(201, regions::circle(100, 100, 50), 1), "off 98 rim 105 body 298 rim 305 off");
    EXPECT_EQ(along(203, regions::circle(100, 100, 0), 1), "off 199 rim 204 off");
    // The ring has its centre at (401, 401) and radii of 100 and 200.
    EXPECT_EQ(along(401, regions::powder(200.5, 200.5, 50, 100), 1),
              "off 197 outer 206 body 297 inner 306 off 400 centre 403 off 497 inner 506 body 597 "
              "outer 606 off");
    EXPECT_EQ(along(401, regions::powder(200.5, 200.5, 50, 56), 1),
              "off 285 outer 289 body 302 inner 306 off 400 centre 403 off 497 inner 501 body 514 "
              "outer 518 off")
        << "narrow";
}

TEST(RegionHitTest, Extremes)
{
    constexpr int most = std::numeric_limits<int>::max();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(along(0, regions::ofType(StatisticsData::None), 0), "off");
    EXPECT_EQ(along(0, regions::between(7, 0, 0, 10, 10), 0), "off") << "of an unknown kind";
    EXPECT_EQ(along(672, regions::line(-most, 10, most, 10), 6), "body");
    EXPECT_EQ(along(5, regions::box(-most, -most, most, most), 6), "body");
    EXPECT_EQ(along(5, regions::circle(most, most, 10), 6), "off");
    EXPECT_EQ(along(5, regions::powder(infinity, 0, 5, 10), 0), "off");
}

TEST(Diameter, IsHeldAlongTheSectionOfAFreeCircleOnly)
{
    constexpr double theta = 0.5235987755982988;  // 30 degrees
    StatisticsData region = regions::circle(100, 100, 50, theta);
    const auto held = [&](double along, double beside) {
        const QPointF point = QPointF(201, 201) +
                              along * QPointF(std::cos(theta), std::sin(theta)) +
                              beside * QPointF(-std::sin(theta), std::cos(theta));
        return render::nextToDiameter(region, viewAt(1), point.toPoint());
    };
    EXPECT_TRUE(held(0, 0));
    EXPECT_TRUE(held(80, 0));
    EXPECT_TRUE(held(-80, 1));
    EXPECT_FALSE(held(80, 4));
    EXPECT_TRUE(held(103, 0)) << "a little beyond the rim";
    EXPECT_FALSE(held(107, 0));
    region.roiType = StatisticsData::Box;
    EXPECT_FALSE(held(0, 0));
}

}  // namespace
