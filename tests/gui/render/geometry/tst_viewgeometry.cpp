// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where image pixels stand in a view.
#include "gui/render/geometry/ViewGeometry.h"

#include <gtest/gtest.h>

#include <QVector3D>

#include <limits>

namespace {

using render::ViewGeometry;

/// The matrices put the corners of the visible part where offset and zoom put them.
void expectMatrices(const ViewGeometry& geometry, const ViewportData& viewport)
{
    const QRectF visible = geometry.visibleRange();
    const QMatrix4x4 select = geometry.selectRegionMatrix();
    if (visible.isEmpty()) {
        EXPECT_EQ(select(0, 0) * select(1, 1), 0) << "nothing to see has no area";
        return;
    }
    for (const QPointF corner : {QPointF(0, 0), QPointF(1, 0), QPointF(1, 1), QPointF(0, 1)}) {
        const QVector3D clip =
            geometry.plotMatrix().map(select.map(QVector3D(QVector2D(corner), 0)));
        const double x = visible.x() + corner.x() * visible.width();
        const double y = visible.y() + corner.y() * visible.height();
        EXPECT_NEAR((clip.x() + 1) / 2 * 200, (x - viewport.offsetX) * viewport.zoom(), 0.05);
        EXPECT_NEAR((1 - clip.y()) / 2 * 100, (y - viewport.offsetY) * viewport.zoom(), 0.05);
    }
}

TEST(ViewGeometry, VisibleRangeBoundaryAndMatricesAgree)
{
    struct Row {
        const char* name;
        QSize image;
        ViewportData viewport;
        QRectF visible;
        QRect boundary;
    };
    const QSize small(100, 50), large(1000, 800), largest(16384, 16384);
    for (const auto& [name, image, viewport, visible, boundary] : std::initializer_list<Row>{
             {"no image", {0, 0}, {0, 0, 0, 0, 0}, {}, {}},
             {"inside", large, {10, 20, 0, 0, 0}, {10, 20, 200, 100}, {0, 0, 200, 100}},
             {"centred", small, {-50, -25, 0, 0, 0}, {0, 0, 100, 50}, {50, 25, 100, 50}},
             {"enlarged", small, {-2, 3, 4, 0, 0}, {0, 3, 10.5, 6.25}, {32, 0, 168, 100}},
             {"reduced", large, {-40, 600, -2, 0, 0}, {0, 600, 760, 200}, {10, 0, 190, 50}},
             {"lower right", small, {60, 30, 0, 0, 0}, {60, 30, 40, 20}, {0, 0, 40, 20}},
             {"halves", small, {0.5, -0.5, 1, 0, 0}, {0.5, 0, 99.5, 49.5}, {0, 1, 199, 99}},
             {"largest sensor",
              largest,
              {16300.25, 16380.5, 6, 0, 0},
              {16300.25, 16380.5, 3.125, 1.5625},
              {0, 0, 200, 100}},
             {"out of view right", small, {101, 0, 0, 0, 0}, {}, {0, 0, 0, 50}},
             {"out of view left", small, {-201, 0, 0, 0, 0}, {}, {201, 0, -1, 50}}}) {
        SCOPED_TRACE(name);
        const ViewGeometry geometry(image, QSize(200, 100), viewport);
        EXPECT_EQ(geometry.visibleRange(), visible);
        EXPECT_EQ(geometry.imageBoundary(), boundary);
        expectMatrices(geometry, viewport);
    }
}

TEST(ViewGeometry, ScreenAndImageCoordinatesAreInverse)
{
    const ViewGeometry geometry({1000, 800}, {200, 100}, {12.25, -7.5, 3, 0, 0});
    EXPECT_EQ(geometry.imageX(0), 12.25);
    EXPECT_EQ(geometry.imageY(16), -5.5);
    EXPECT_EQ(geometry.screenX(geometry.imageX(77)), 77);
    EXPECT_EQ(geometry.screenY(geometry.imageY(33)), 33);
    EXPECT_EQ(geometry.screenX(12.25 + 0.99 / 8), 0) << "truncated";
    EXPECT_EQ(geometry.windowToImage(), QRectF(12.25, -7.5, 25, 12.5));
    constexpr double far = 1e300;
    EXPECT_EQ(geometry.screenX(far), std::numeric_limits<int>::max());
    EXPECT_EQ(geometry.screenY(-far), std::numeric_limits<int>::min());
    const ViewGeometry scaled({250, 200}, {200, 100}, {10, 0, 1, 0, 0}, 0.25);
    EXPECT_EQ(scaled.imageX(20), 80) << "a scaled picture counts in image pixels";
    EXPECT_EQ(scaled.screenX(80), 20);
}

}  // namespace
