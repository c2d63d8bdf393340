// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Zoom and pan as arithmetic on viewports.
#include "gui/render/gestures/ZoomPan.h"

#include "gui/render/geometry/ViewGeometry.h"

#include <gtest/gtest.h>

namespace {

constexpr QSize view(200, 100);

TEST(ZoomPan, TheFirstViewportCentresTheImageAtOnePixelPerPixel)
{
    EXPECT_EQ(render::centredViewport({1001, 801}, view), ViewportData(400, 350, 0, 0, 0));
    EXPECT_EQ(render::centredViewport({99, 51}, view), ViewportData(-50, -24, 0, 0, 0));
}

TEST(ZoomPan, AFittedImageIsCentredAtTheLargestZoomThatShowsAllOfIt)
{
    const ViewportData current(7, 7, 5, 30, 40);
    const auto fitted = [&](QSize image) { return render::fittedViewport(current, image, view); };
    EXPECT_EQ(fitted({200, 100}), ViewportData(0, 0, 0, 30, 40));
    EXPECT_EQ(fitted({201, 100}), ViewportData(-99.5, -50, -1, 30, 40));
    EXPECT_EQ(fitted({50, 40}), ViewportData(-25, -5, 1, 30, 40));
    EXPECT_EQ(fitted({1, 1}), ViewportData(-1.0625, -0.28125, 6, 30, 40));
    EXPECT_EQ(fitted({1000, 900}), ViewportData(100, 250, -2, 30, 40)) << "too large";
}

TEST(ZoomPan, NoMoveWidensTheEmptyBorder)
{
    struct Row {
        const char* name;
        QSize image;
        ViewportData current, wanted;
        double adoptedX, adoptedY;
    };
    const QSize large(1000, 800), small(100, 50);
    for (const Row& row : std::initializer_list<Row>{
             {"free inside", large, {10, 10, 0, 0, 0}, {500, 600, 0, 0, 0}, 500, 600},
             {"not beyond the edge", large, {5, 10, 0, 0, 0}, {-8, 20, 0, 0, 0}, 5, 20},
             {"each axis alone", large, {5, 690, 0, 0, 0}, {9, 720, 0, 0, 0}, 9, 690},
             {"back over the edge", large, {-30, 0, 0, 0, 0}, {-10, 0, 0, 0, 0}, -10, 0},
             {"small to balance", small, {-10, 0, 0, 0, 0}, {-40, -20, 0, 0, 0}, -40, -20},
             {"small not away", small, {-50, -25, 0, 0, 0}, {-90, -3, 0, 0, 0}, -50, -25},
             {"any zoom is taken", small, {-50, -25, 0, 0, 0}, {-500, 99, 1, 0, 0}, -500, 99}})
        EXPECT_EQ(render::withoutWiderBorder(row.wanted, row.current, row.image, view),
                  ViewportData(row.adoptedX, row.adoptedY, row.wanted.zoomPower, 0, 0))
            << row.name;
}

}  // namespace
