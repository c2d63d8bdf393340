// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What of an outline is drawn.
#include "gui/render/overlays/Outline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using render::Outline;

const QRectF window(0, 0, 1000, 800);

Outline circle(QPointF centre, double radius)
{
    const QPointF half(radius, radius);
    return Outline::ellipse(QRectF(centre - half, centre + half), window);
}

TEST(Outline, ALineKeepsItsWayWhereItIsCut)
{
    const auto pieces = Outline::along({QPointF(-300, 100), QPointF(5000, 100)}).within(window);
    ASSERT_EQ(pieces.size(), 1U);
    ASSERT_EQ(pieces[0].size(), 2U);
    EXPECT_EQ(pieces[0][0].at, QPointF(0, 100));
    EXPECT_DOUBLE_EQ(pieces[0][0].way, 300);
    EXPECT_NEAR(pieces[0][1].at.x(), 1000, 1e-9);
    EXPECT_NEAR(pieces[0][1].way, 1300, 1e-9);
}

TEST(Outline, PartsThatHangTogetherAreOnePiece)
{
    const Outline box = Outline::along(
        {QPointF(10, 10), QPointF(2000, 10), QPointF(2000, 50), QPointF(10, 50), QPointF(10, 10)});
    const auto pieces = box.within(window);
    ASSERT_EQ(pieces.size(), 2U) << "the right edge is out of view";
    EXPECT_EQ(pieces[0].size(), 2U);
    EXPECT_EQ(pieces[1].size(), 3U);
    EXPECT_NEAR(pieces[1][0].at.x(), 1000, 1e-9);
    EXPECT_NEAR(pieces[1][0].way, 1990 + 40 + 1000, 1e-9);
    EXPECT_EQ(pieces[1][2].at, QPointF(10, 10));
    EXPECT_EQ(Outline::along({QPointF(-5, 3), QPointF(-5, 700)}).within(window).size(), 0U);
    EXPECT_EQ(Outline::along({QPointF(7, 7), QPointF(7, 7)}).within(window).size(), 1U);
}

TEST(Outline, CirclesOfAnySizeStayOnTheirCurveWithFewPoints)
{
    for (const double radius : {1.0, 30.0, 390.0, 1e4, 1e6, 3e7}) {
        const QPointF centre(500 - radius, 300);
        std::size_t points = 0;
        for (const auto& piece : circle(centre, radius).within(window)) {
            points += piece.size();
            for (std::size_t i = 1; i < piece.size(); ++i) {
                const QPointF middle = (piece[i - 1].at + piece[i].at) / 2 - centre;
                EXPECT_NEAR(std::hypot(middle.x(), middle.y()), radius, 0.1);
            }
        }
        EXPECT_GE(points, 2U) << radius;
        EXPECT_LE(points, 300U) << radius;
    }
}

TEST(Outline, DashesOfACircleStayWhenTheViewMoves)
{
    const double radius = 64000;
    const auto wayAt = [&](double shift) {
        const QPointF centre(500 - radius + shift, 300);
        const auto pieces = circle(centre, radius).within(window);
        const auto& first = pieces.front().front();
        const double angle = std::atan2(first.at.y() - centre.y(), first.at.x() - centre.x());
        return first.way - (angle < 0 ? angle + 2 * std::numbers::pi : angle) * radius;
    };
    EXPECT_NEAR(wayAt(0), 0, 0.5);
    EXPECT_NEAR(wayAt(-333), 0, 0.5);
}

TEST(Outline, AreasAreCutToTheWindow)
{
    const auto area = [](const QPolygonF& polygon) {
        double twice = 0;
        for (qsizetype i = 0; i < polygon.size(); ++i) {
            const QPointF a = polygon[i], b = polygon[(i + 1) % polygon.size()];
            twice += a.x() * b.y() - b.x() * a.y();
        }
        return std::abs(twice) / 2;
    };
    constexpr double pi = std::numbers::pi;
    EXPECT_NEAR(area(circle({500, 400}, 100).areaWithin(window)), pi * 1e4, 20);
    EXPECT_NEAR(area(circle({0, 0}, 100).areaWithin(window)), pi * 1e4 / 4, 10);
    EXPECT_NEAR(area(circle({500, 400}, 1e7).areaWithin(window)), 1000 * 800, 1);
    EXPECT_NEAR(area(circle({500 - 1e7, 400}, 1e7).areaWithin(window)), 500 * 800, 20);
    EXPECT_EQ(area(circle({-200, -200}, 100).areaWithin(window)), 0);
}

TEST(Outline, BoxesThatAreNoNumbersDrawNothing)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(Outline::ellipse(QRectF(nan, 0, 10, 10), window).within(window).empty());
    EXPECT_TRUE(Outline::ellipse(QRectF(0, 0, infinite, 10), window).areaWithin(window).empty());
    EXPECT_FALSE(Outline::ellipse(QRectF(30, 30, -20, -20), window).within(window).empty());
}

}  // namespace
