// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of an image: colours, canvas and legend.
#include "logic/output/Pictures.h"

#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/image/MException.h"
#include "tests/logic/output/Shown.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using morvend::imglib::MColorMap;
using morvend::imglib::MImage;
using pictures::MRect;
using tarvik::tests::shown;

TEST(Pictures, EachPixelHasTheColourOfTheView)
{
    // More rows than are coloured at a time.
    ImageSnapshot snapshot = shown(1500, 1501);
    for (const bool highlight : {true, false}) {
        snapshot.highlightDefective = snapshot.highlightSaturated = highlight;
        const QImage picture = pictures::ofImage(snapshot);
        ASSERT_EQ(picture.size(), QSize(1500, 1501));
        MImage expected;
        MColorMap::rgb(expected, snapshot.image, 50, 0, 500'000, *snapshot.contrast.colorTable,
                       "ARGB", &snapshot.mask, nullptr, 90, highlight, highlight);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                ASSERT_EQ(reinterpret_cast<const QRgb*>(picture.constScanLine(y))[x],
                          std::as_const(expected).pixels<unsigned>()[y * 1500 + x])
                    << x << ' ' << y << ' ' << highlight;
    }
    const QImage plain = pictures::ofImage(snapshot);
    snapshot.highlightSaturated = true;
    EXPECT_NE(pictures::ofImage(snapshot).pixel(95, 0), plain.pixel(95, 0)) << "a count of 95";
    EXPECT_EQ(pictures::ofImage(snapshot).pixel(89, 0), plain.pixel(89, 0));
    snapshot.highlightDefective = true;
    EXPECT_NE(pictures::ofImage(snapshot).pixel(3, 0), plain.pixel(3, 0)) << "a defective pixel";
}

struct Canvas {
    const char* name;
    QSize picture;
    MRect legend;
    QSize size;
    QPoint place;  // of the picture
};

class Canvases : public testing::TestWithParam<Canvas> {};

TEST_P(Canvases, HoldPictureAndLegendOnWhite)
{
    const Canvas& row = GetParam();
    const ImageSnapshot snapshot = shown(1, 1);
    QImage picture(row.picture, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::red);
    const QImage canvas = pictures::withLegend(picture, snapshot.contrast, row.legend);
    ASSERT_EQ(canvas.size(), row.size);
    EXPECT_EQ(canvas.format(), QImage::Format_ARGB32_Premultiplied);
    const QImage legend =
        pictures::colorLegend(snapshot.contrast, row.legend.width(), row.legend.height());
    const QPoint legendPlace(row.legend.left(), row.legend.top());
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const QPoint place(x, y);
            QRgb expected = qRgb(255, 255, 255);
            if (QRect(legendPlace, legend.size()).contains(place))
                expected = legend.pixel(place - legendPlace);
            else if (QRect(row.place, row.picture).contains(place))
                expected = qRgb(255, 0, 0);
            ASSERT_EQ(canvas.pixel(place), expected) << x << ' ' << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Canvases,
    testing::Values(Canvas{"NoLegend", {30, 20}, {}, {30, 20}, {0, 0}},
                    Canvas{"Beside", {100, 100}, {100, 0, 150, 400}, {250, 400}, {0, 0}},
                    Canvas{"Inside", {300, 500}, {10, 20, 150, 400}, {300, 500}, {0, 0}},
                    Canvas{"Left", {100, 50}, {-150, 0, 150, 40}, {250, 50}, {150, 0}},
                    Canvas{"LeftAndAbove", {100, 50}, {-20, -10, 60, 40}, {120, 60}, {20, 10}}),
    [](const auto& row) { return row.param.name; });

TEST(Pictures, ALegendThatNoCanvasHoldsIsRefused)
{
    constexpr int Most = std::numeric_limits<int>::max();
    const ImageSnapshot snapshot = shown(4, 4);
    const QImage picture = pictures::ofImage(snapshot);
    for (const MRect& rect :
         {MRect(Most, 0, 10, 10), MRect(0, -Most - 1, 10, 10), MRect(0, 0, Most, Most)})
        EXPECT_THROW(pictures::withLegend(picture, snapshot.contrast, rect),
                     morvend::MBadParameterException);
    EXPECT_TRUE(pictures::colorLegend(snapshot.contrast, 0, 10).isNull());
}

TEST(Pictures, TheLegendHasItsBarAndTicksInTheirPlaces)
{
    const QImage legend = pictures::colorLegend(shown(1, 1).contrast, 150, 400);
    ASSERT_EQ(legend.size(), QSize(150, 400));
    const QRgb white = qRgb(255, 255, 255);
    // The bar is 50 by 360 pixels at (85, 20).
    EXPECT_EQ(legend.pixel(84, 25), white);
    for (const int y : {20, 379})
        for (const int x : {85, 134})
            EXPECT_NE(legend.pixel(x, y), white) << x << ' ' << y;
    EXPECT_EQ(legend.pixel(135, 200), white);
    EXPECT_EQ(legend.pixel(100, 19), white);
    EXPECT_EQ(legend.pixel(100, 380), white);
    int ticks = 0;
    int inkOfLabels = 0;
    for (int y = 0; y < 400; ++y) {
        ticks += legend.pixel(81, y) == qRgb(0, 0, 0);
        for (int x = 10; x < 75; ++x)
            inkOfLabels += legend.pixel(x, y) != white;
    }
    EXPECT_GE(ticks, 4);
    EXPECT_GT(inkOfLabels, 20 * ticks);
}

}  // namespace
