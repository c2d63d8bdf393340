// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Circles against rectangles and lines, and where rings and their labels stand.
#include "gui/render/CircleGeometry.h"
#include "gui/render/RingGeometry.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace {

using render::ScreenRing;
using render::ViewGeometry;

struct DistanceCase {
    const char* name;
    QPoint point;
    double minimum;
    double maximum;
};

void PrintTo(const DistanceCase& row, std::ostream* out) { *out << row.name; }

class Distance : public testing::TestWithParam<DistanceCase> {};

TEST_P(Distance, ToARectangle)
{
    const auto range = render::minMaxDistanceFromRect(GetParam().point, QSize(200, 100));
    EXPECT_EQ(range.minimumSquared, GetParam().minimum);
    EXPECT_EQ(range.maximumSquared, GetParam().maximum);
}

INSTANTIATE_TEST_SUITE_P(
    Zones, Distance,
    testing::Values(DistanceCase{"Within", {50, 40}, 0, 150 * 150 + 60 * 60},
                    DistanceCase{"UpperLeft", {-3, -4}, 25, 203 * 203 + 104 * 104},
                    DistanceCase{"Above", {50, -4}, 16, 150 * 150 + 104 * 104},
                    DistanceCase{"UpperRight", {203, -4}, 25, 203 * 203 + 104 * 104},
                    DistanceCase{"Right", {203, 50}, 9, 203 * 203 + 50 * 50},
                    DistanceCase{"LowerRight", {203, 104}, 25, 203 * 203 + 104 * 104},
                    DistanceCase{"Below", {50, 104}, 16, 150 * 150 + 104 * 104},
                    DistanceCase{"LowerLeft", {-3, 104}, 25, 203 * 203 + 104 * 104},
                    DistanceCase{"LeftCountsAsWithin", {-3, 50}, 0, 203 * 203 + 50 * 50},
                    DistanceCase{"RightInTheRowOfTheEdge", {203, 0}, 0, 203 * 203 + 100 * 100}),
    [](const auto& row) { return std::string(row.param.name); });

struct CrossingCase {
    const char* name;
    QPoint begin;
    QPoint end;
    int count;
    QPoint first;
    QPoint second;
};

void PrintTo(const CrossingCase& row, std::ostream* out) { *out << row.name; }

class Crossing : public testing::TestWithParam<CrossingCase> {};

TEST_P(Crossing, OfACircleWithALine)
{
    const auto crossings =
        render::intersectCircleWithLine({100, 100}, 50, GetParam().begin, GetParam().end);
    EXPECT_EQ(crossings.count, GetParam().count);
    EXPECT_EQ(crossings.first, GetParam().first);
    EXPECT_EQ(crossings.second, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Crossing,
    testing::Values(CrossingCase{"Through", {0, 100}, {200, 100}, 2, {50, 100}, {150, 100}},
                    CrossingCase{"Backwards", {200, 100}, {0, 100}, 2, {150, 100}, {50, 100}},
                    CrossingCase{"Entering", {0, 130}, {100, 130}, 1, {60, 130}, {}},
                    CrossingCase{"Leaving", {100, 130}, {200, 130}, 1, {140, 130}, {}},
                    CrossingCase{"Within", {80, 100}, {120, 100}, 0, {}, {}},
                    CrossingCase{"Touching", {0, 50}, {200, 50}, 2, {100, 50}, {100, 50}},
                    CrossingCase{"Missing", {0, 49}, {200, 49}, 0, {}, {}},
                    CrossingCase{"BeyondTheEnd", {0, 100}, {49, 100}, 0, {}, {}},
                    CrossingCase{"WithoutLength", {50, 100}, {50, 100}, 0, {}, {}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RingCount, FollowsTheVisiblePartOfTheWidth)
{
    const QSize image(1000, 800);
    const auto count = [&](QSize view, ViewportData viewport) {
        return render::ringCount(ViewGeometry(image, view, viewport));
    };
    EXPECT_EQ(count({1000, 800}, {0, 0, 0, 0, 0}), 3);
    EXPECT_EQ(count({2000, 800}, {-500, 0, 0, 0, 0}), 3) << "with a border around the image";
    EXPECT_EQ(count({1000, 800}, {0, 0, 1, 0, 0}), 6);
    EXPECT_EQ(count({1000, 800}, {0, 0, 6, 0, 0}), 192);
    EXPECT_EQ(count({1000, 800}, {500, 0, 0, 0, 0}), 6) << "half of the image has left the view";
    EXPECT_EQ(count({1000, 800}, {2000, 0, 0, 0, 0}), 0) << "nothing to see";
    EXPECT_EQ(count({1000, 800}, {999.9999, 0, 0, 0, 0}), 3000) << "a last sliver";
    EXPECT_EQ(count({0, 0}, {0, 0, 0, 0, 0}), 0);
    EXPECT_EQ(render::ringCount(ViewGeometry(QSize(), {10, 10}, {})), 0);
    EXPECT_EQ(render::ringCount(ViewGeometry({1, 1}, {10, 10}, {0, 0, 0, 0, 0})), 3);
}

TEST(ScreenRing, IsConvertedByItsCornersOneByOne)
{
    const ViewGeometry view(QSize(1000, 800), QSize(400, 300), ViewportData(0.3, 0.3, 1, 0, 0));
    const auto ring = render::screenRing({100.2, 50.7}, 30.5, view);
    ASSERT_TRUE(ring);
    EXPECT_EQ(ring->box, QRect(138, 39, 122, 122));
    EXPECT_EQ(ring->centre, QPoint(199, 100));
    EXPECT_EQ(ring->radius, 61);
}

TEST(ScreenRing, IsSkippedWhereNothingOfItCanBeSeen)
{
    const ViewGeometry view(QSize(4000, 4000), QSize(400, 300), ViewportData(0, 0, 0, 0, 0));
    EXPECT_TRUE(render::screenRing({200, -50}, 50, view)) << "touches the view";
    EXPECT_FALSE(render::screenRing({200, -50}, 49, view));
    EXPECT_TRUE(render::screenRing({0, 0}, 500, view)) << "runs through the far corner";
    EXPECT_FALSE(render::screenRing({0, 0}, 501, view));
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (const double radius : {nan, infinite, -1.0, 1e18})
        EXPECT_FALSE(render::screenRing({200, 100}, radius, view)) << radius;
    EXPECT_FALSE(render::screenRing({nan, 100}, 20, view));
    EXPECT_FALSE(render::screenRing({200, infinite}, 20, view));
}

struct AnchorCase {
    const char* name;
    QPoint centre;
    int radius;
    std::optional<QPoint> anchor;
};

void PrintTo(const AnchorCase& row, std::ostream* out) { *out << row.name; }

class Anchor : public testing::TestWithParam<AnchorCase> {};

/// The image covers a part of the view from (20, 10) to (219, 109).
TEST_P(Anchor, OfALabel)
{
    const ScreenRing ring{QRect(), GetParam().centre, GetParam().radius};
    EXPECT_EQ(render::labelAnchor(ring, QRect(20, 10, 200, 100)), GetParam().anchor);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Anchor,
    testing::Values(AnchorCase{"TopmostPoint", {100, 80}, 30, QPoint(100, 50)},
                    AnchorCase{"UpperEdgeLeftCrossingFirst", {100, 50}, 50, QPoint(70, 10)},
                    AnchorCase{"UpperEdgeRightCrossing", {40, 50}, 50, QPoint(70, 10)},
                    AnchorCase{"LeftEdge", {-10, 60}, 50, QPoint(20, 20)},
                    AnchorCase{"RightEdge", {249, 60}, 50, QPoint(219, 20)},
                    AnchorCase{"UpperEdgeOfALargeRing", {229, 100}, 200, QPoint(50, 10)},
                    AnchorCase{"RightEdgeFromBeyond", {270, 60}, 55, QPoint(219, 39)},
                    AnchorCase{"NoneInView", {100, 300}, 100, std::nullopt},
                    AnchorCase{"AroundTheImage", {100, 60}, 500, std::nullopt}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(LabelCorner, IsHeldWithinTheSizeOfTheImageInTheView)
{
    const QSize text(40, 20);
    const QRect whole(0, 0, 200, 100);
    EXPECT_EQ(render::labelCorner({50, 30}, text, whole), QPoint(50, 30));
    EXPECT_EQ(render::labelCorner({190, 95}, text, whole), QPoint(155, 75));
    EXPECT_EQ(render::labelCorner({-5, -5}, text, whole), QPoint(0, 0));
    // The limit is the size of the boundary, not its far edge.
    EXPECT_EQ(render::labelCorner({300, 130}, text, QRect(150, 20, 200, 100)), QPoint(155, 75));
    EXPECT_EQ(render::labelCorner({10, 10}, QSize(400, 300), whole), QPoint(0, 0));
}

}  // namespace
