// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where image pixels stand in a view.
#include "gui/render/ViewGeometry.h"

#include <gtest/gtest.h>

#include <QVector3D>

#include <limits>
#include <ostream>

namespace {

using render::ViewGeometry;

struct Case {
    const char* name;
    QSize image;
    ViewportData viewport;
    QRectF visible;
    QRect boundary;
};

void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

constexpr double far = 1e300;

class Geometry : public testing::TestWithParam<Case> {
protected:
    ViewGeometry _geometry{GetParam().image, QSize(200, 100), GetParam().viewport};
};

TEST_P(Geometry, VisibleRangeAndBoundary)
{
    EXPECT_EQ(_geometry.visibleRange(), GetParam().visible);
    EXPECT_EQ(_geometry.imageBoundary(), GetParam().boundary);
}

/// The matrices put the corners of the visible part where screenX and screenY put them.
TEST_P(Geometry, MatricesAgreeWithScreenCoordinates)
{
    const QRectF visible = _geometry.visibleRange();
    const QMatrix4x4 select = _geometry.selectRegionMatrix();
    const QMatrix4x4 transform = _geometry.transformationMatrix();
    if (visible.isEmpty()) {
        EXPECT_EQ(select(0, 0) * select(1, 1), 0) << "nothing to see has no area";
        return;
    }
    const double zoom = GetParam().viewport.zoom();
    for (const QPointF corner : {QPointF(0, 0), QPointF(1, 0), QPointF(1, 1), QPointF(0, 1)}) {
        const QVector3D part = select.map(QVector3D(QVector2D(corner), 0));
        const QVector3D clip = transform.map(part);
        const double x = visible.x() + corner.x() * visible.width();
        const double y = visible.y() + corner.y() * visible.height();
        EXPECT_NEAR((clip.x() + 1) / 2 * 200, (x - GetParam().viewport.offsetX) * zoom, 0.05);
        EXPECT_NEAR((1 - clip.y()) / 2 * 100, (y - GetParam().viewport.offsetY) * zoom, 0.05);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Geometry,
    testing::Values(
        Case{"NoImage", QSize(0, 0), {0, 0, 0, 0, 0}, {}, {}},
        Case{"Inside", {1000, 800}, {10, 20, 0, 0, 0}, {10, 20, 200, 100}, {0, 0, 200, 100}},
        Case{"Centred", {100, 50}, {-50, -25, 0, 0, 0}, {0, 0, 100, 50}, {50, 25, 100, 50}},
        Case{"Enlarged", {100, 50}, {-2, 3, 4, 0, 0}, {0, 3, 10.5, 6.25}, {32, 0, 168, 100}},
        Case{"Reduced", {1000, 800}, {-40, 600, -2, 0, 0}, {0, 600, 760, 200}, {10, 0, 190, 50}},
        Case{"LowerRightEnd", {100, 50}, {60, 30, 0, 0, 0}, {60, 30, 40, 20}, {0, 0, 40, 20}},
        Case{"Halves", {100, 50}, {0.5, -0.5, 1, 0, 0}, {0.5, 0, 99.5, 49.5}, {0, 1, 199, 99}},
        Case{"LargestSensor",
             {16384, 16384},
             {16300.25, 16380.5, 6, 0, 0},
             {16300.25, 16380.5, 3.125, 1.5625},
             {0, 0, 200, 100}},
        Case{"OutOfViewRight", {100, 50}, {101, 0, 0, 0, 0}, {}, {0, 0, 0, 50}},
        Case{"OutOfViewLeft", {100, 50}, {-201, 0, 0, 0, 0}, {}, {201, 0, -1, 50}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(GeometryConversions, ScreenAndImageCoordinatesAreInverse)
{
    const ViewGeometry geometry({1000, 800}, {200, 100}, {12.25, -7.5, 3, 0, 0});
    EXPECT_EQ(geometry.imageX(0), 12.25);
    EXPECT_EQ(geometry.imageY(16), -5.5);
    EXPECT_EQ(geometry.screenX(geometry.imageX(77)), 77);
    EXPECT_EQ(geometry.screenY(geometry.imageY(33)), 33);
    EXPECT_EQ(geometry.screenX(12.25 + 0.99 / 8), 0) << "truncated";
    EXPECT_EQ(geometry.windowToImage(), QRectF(12.25, -7.5, 25, 12.5));
}

TEST(GeometryConversions, AScaledPictureCountsInImagePixels)
{
    const ViewGeometry geometry({250, 200}, {200, 100}, {10, 0, 1, 0, 0}, 0.25);
    EXPECT_EQ(geometry.imageX(20), 80);
    EXPECT_EQ(geometry.screenX(80), 20);
}

TEST(GeometryConversions, PositionsBeyondIntegersAreHeld)
{
    const ViewGeometry geometry({100, 50}, {200, 100}, {0, 0, 6, 0, 0});
    EXPECT_EQ(geometry.screenX(far), std::numeric_limits<int>::max());
    EXPECT_EQ(geometry.screenY(-far), std::numeric_limits<int>::min());
}

}  // namespace
