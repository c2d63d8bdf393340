// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Zoom and pan as arithmetic on viewports.
#include "gui/render/gestures/ZoomPan.h"

#include "gui/render/ViewGeometry.h"

#include <gtest/gtest.h>

namespace {

constexpr QSize view(200, 100);

TEST(ZoomPan, TheFirstViewportCentresTheImageAtOnePixelPerPixel)
{
    const ViewportData large = render::centredViewport({1001, 801}, view);
    EXPECT_TRUE(large.defined);
    EXPECT_EQ(large.offsetX, 400) << "integer division";
    EXPECT_EQ(large.offsetY, 350);
    EXPECT_EQ(large.zoomPower, 0);
    EXPECT_EQ(render::centredViewport({99, 51}, view).offsetX, -50);
    EXPECT_EQ(render::centredViewport({99, 51}, view).offsetY, -24);
}

TEST(ZoomPan, TheImagePointUnderTheCursorStaysAtAnyZoom)
{
    const QPoint cursor(133, 41);
    for (int power = -2; power <= 6; ++power) {
        for (const int step : {1, -1}) {
            const ViewportData before(17.5, -3.25, power, 10, 20);
            const render::ViewGeometry geometry({1000, 800}, view, before);
            const QPointF point(geometry.imageX(cursor.x()), geometry.imageY(cursor.y()));
            const ViewportData after = render::zoomedAbout(before, point, cursor, step);
            const render::ViewGeometry zoomed({1000, 800}, view, after);
            EXPECT_DOUBLE_EQ(zoomed.imageX(cursor.x()), point.x());
            EXPECT_DOUBLE_EQ(zoomed.imageY(cursor.y()), point.y());
            EXPECT_EQ(after.zoomPower, std::clamp(power + step, -2, 6));
            EXPECT_EQ(after.rotationX, 10);
            EXPECT_EQ(after.rotationY, 20);
        }
    }
}

TEST(ZoomPan, APanKeepsFractionsOfImagePixels)
{
    const ViewportData start(10, 20, 3, 1, 2);
    const ViewportData moved = render::panned(start, {3, -5}, 8, 1);
    EXPECT_DOUBLE_EQ(moved.offsetX, 10 - 3.0 / 8);
    EXPECT_DOUBLE_EQ(moved.offsetY, 20 + 5.0 / 8);
    EXPECT_EQ(moved.zoomPower, 3);
    EXPECT_EQ(moved.rotationY, 2);
    const ViewportData thumbnail = render::panned(start, {3, -5}, 0.25, -1);
    EXPECT_DOUBLE_EQ(thumbnail.offsetX, 10 + 3.0 * 4);
}

struct Move {
    const char* name;
    QSize image;
    ViewportData current;
    ViewportData wanted;
    double adoptedX;
    double adoptedY;
};

class PanCorrection : public testing::TestWithParam<Move> {};

TEST_P(PanCorrection, NoMoveWidensTheEmptyBorder)
{
    const Move& move = GetParam();
    const ViewportData adopted =
        render::withoutWiderBorder(move.wanted, move.current, move.image, view);
    EXPECT_EQ(adopted.offsetX, move.adoptedX);
    EXPECT_EQ(adopted.offsetY, move.adoptedY);
    EXPECT_EQ(adopted.zoomPower, move.wanted.zoomPower);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PanCorrection,
    testing::Values(
        Move{"FreeInside", {1000, 800}, {10, 10, 0, 0, 0}, {500, 600, 0, 0, 0}, 500, 600},
        Move{"NotBeyondTheEdge", {1000, 800}, {5, 10, 0, 0, 0}, {-8, 20, 0, 0, 0}, 5, 20},
        Move{"EachAxisAlone", {1000, 800}, {5, 690, 0, 0, 0}, {9, 720, 0, 0, 0}, 9, 690},
        Move{"BackOverTheEdge", {1000, 800}, {-30, 0, 0, 0, 0}, {-10, 0, 0, 0, 0}, -10, 0},
        Move{"SmallImageToBalance", {100, 50}, {-10, 0, 0, 0, 0}, {-40, -20, 0, 0, 0}, -40, -20},
        Move{"SmallImageNotAway", {100, 50}, {-50, -25, 0, 0, 0}, {-90, -3, 0, 0, 0}, -50, -25},
        Move{"AnyZoomIsTaken", {100, 50}, {-50, -25, 0, 0, 0}, {-500, 99, 1, 0, 0}, -500, 99}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
