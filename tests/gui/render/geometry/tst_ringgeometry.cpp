// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Circles against rectangles and lines, and where rings and their labels stand.
#include "gui/render/geometry/CircleGeometry.h"
#include "gui/render/geometry/RingGeometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using render::ViewGeometry;

TEST(CircleGeometry, DistanceFromARectangle)
{
    struct Row {
        const char* zone;
        QPoint point;
        double minimum, maximum;
    };
    for (const Row& row : {Row{"within", {50, 40}, 0, 150 * 150 + 60 * 60},
                           {"upper left", {-3, -4}, 25, 203 * 203 + 104 * 104},
                           {"above", {50, -4}, 16, 150 * 150 + 104 * 104},
                           {"upper right", {203, -4}, 25, 203 * 203 + 104 * 104},
                           {"right", {203, 50}, 9, 203 * 203 + 50 * 50},
                           {"lower right", {203, 104}, 25, 203 * 203 + 104 * 104},
                           {"below", {50, 104}, 16, 150 * 150 + 104 * 104},
                           {"lower left", {-3, 104}, 25, 203 * 203 + 104 * 104},
                           {"left counts as within", {-3, 50}, 0, 203 * 203 + 50 * 50},
                           {"right of the edge's row", {203, 0}, 0, 203 * 203 + 100 * 100}}) {
        const auto range = render::minMaxDistanceFromRect(row.point, QSize(200, 100));
        EXPECT_EQ(range.minimumSquared, row.minimum) << row.zone;
        EXPECT_EQ(range.maximumSquared, row.maximum) << row.zone;
    }
}

TEST(CircleGeometry, CrossingsWithALine)
{
    struct Row {
        const char* name;
        QPoint begin, end;
        int count;
        QPoint first = {}, second = {};
    };
    for (const Row& row : {Row{"through", {0, 100}, {200, 100}, 2, {50, 100}, {150, 100}},
                           {"backwards", {200, 100}, {0, 100}, 2, {150, 100}, {50, 100}},
                           {"entering", {0, 130}, {100, 130}, 1, {60, 130}},
                           {"leaving", {100, 130}, {200, 130}, 1, {140, 130}},
                           {"within", {80, 100}, {120, 100}, 0},
                           {"touching", {0, 50}, {200, 50}, 2, {100, 50}, {100, 50}},
                           {"missing", {0, 49}, {200, 49}, 0},
                           {"beyond the end", {0, 100}, {49, 100}, 0},
                           {"without length", {50, 100}, {50, 100}, 0}}) {
        const auto found = render::intersectCircleWithLine({100, 100}, 50, row.begin, row.end);
        EXPECT_EQ(found.count, row.count) << row.name;
        EXPECT_EQ(found.first, row.first) << row.name;
        EXPECT_EQ(found.second, row.second) << row.name;
    }
}

TEST(RingCount, FollowsTheVisiblePartOfTheWidth)
{
    struct Row {
        const char* what;
        QSize image, view;
        ViewportData viewport;
        int rings;
    };
    const QSize image(1000, 800), view(1000, 800);
    for (const Row& row : {Row{"all of it", image, view, {0, 0, 0, 0, 0}, 3},
                           {"with a border", image, {2000, 800}, {-500, 0, 0, 0, 0}, 3},
                           {"half of it", image, view, {0, 0, 1, 0, 0}, 6},
                           {"the highest zoom", image, view, {0, 0, 6, 0, 0}, 192},
                           {"half has left the view", image, view, {500, 0, 0, 0, 0}, 6},
                           {"nothing to see", image, view, {2000, 0, 0, 0, 0}, 0},
                           {"a last sliver", image, view, {999.9999, 0, 0, 0, 0}, 3000},
                           {"a view without size", image, {0, 0}, {0, 0, 0, 0, 0}, 0},
                           {"no image", {}, {10, 10}, {}, 0},
                           {"one pixel", {1, 1}, {10, 10}, {0, 0, 0, 0, 0}, 3}})
        EXPECT_EQ(render::ringCount(ViewGeometry(row.image, row.view, row.viewport)), row.rings)
            << row.what;
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

/// The image covers a part of the view from (20, 10) to (219, 109).
TEST(LabelAnchor, IsTheTopmostPointOrACrossingWithAnEdge)
{
    struct Row {
        const char* name;
        QPoint centre;
        int radius;
        std::optional<QPoint> anchor;
    };
    for (const Row& row : {Row{"topmost point", {100, 80}, 30, QPoint(100, 50)},
                           {"upper edge, left crossing first", {100, 50}, 50, QPoint(70, 10)},
                           {"upper edge, right crossing", {40, 50}, 50, QPoint(70, 10)},
                           {"left edge", {-10, 60}, 50, QPoint(20, 20)},
                           {"right edge", {249, 60}, 50, QPoint(219, 20)},
                           {"upper edge of a large ring", {229, 100}, 200, QPoint(50, 10)},
                           {"right edge from beyond", {270, 60}, 55, QPoint(219, 39)},
                           {"none in view", {100, 300}, 100, std::nullopt},
                           {"around the image", {100, 60}, 500, std::nullopt}})
        EXPECT_EQ(render::labelAnchor({QRect(), row.centre, row.radius}, QRect(20, 10, 200, 100)),
                  row.anchor)
            << row.name;
}

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
