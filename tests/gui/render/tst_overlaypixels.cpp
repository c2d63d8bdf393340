// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the overlays of the main view put on its pixels.
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/MouseEvents.h"
#include "tests/gui/render/TestImages.h"
#include "tests/gui/render/gestures/Regions.h"

#include <gtest/gtest.h>

#include <QFontMetrics>

#include <cmath>

namespace {

using namespace morvend::imglib;

/// With shaders and without.
class Overlays : public testing::TestWithParam<bool> {
protected:
    Overlays()
        : _view(QSize(400, 300), GetParam())
    {}

    /// An image of 1000 by 800 pixels in one grey; pixel (300, 250) stands in the view's corner.
    void SetUp() override
    {
        ASSERT_TRUE(_view.open(images::withGeometry(1000, 800, 6, -5000, -5000)));
        _view.service->setContrastData({10, 0, MColorTable::grey(), false});
        _plain = grab().pixelColor(200, 150);
        ASSERT_GT(_plain.red(), 100);
        ASSERT_LT(_plain.red(), 200);
    }

    QImage grab(double ratio = 1)
    {
        _view.hideCursor();
        return _view.drawer->grab(ratio);
    }
    void show(const StatisticsData& region) { _view.service->setStatisticsData(region); }
    /// Comes from another zoom, since at the same one a view refuses wider borders.
    void look(double x, double y, int power)
    {
        _view.service->setViewportData(ViewportData(x, y, power < 0 ? power + 1 : power - 1, 0, 0));
        _view.service->setViewportData(ViewportData(x, y, power, 0, 0));
    }
    /// The plain colour under black of an alpha.
    QColor under(int alpha) const
    {
        const int grey = qRound(_plain.red() * (255 - alpha) / 255.0);
        return {grey, grey, grey};
    }
    static bool near(const QColor& a, const QColor& b)
    {
        return std::abs(a.red() - b.red()) <= 2 && std::abs(a.green() - b.green()) <= 2 &&
               std::abs(a.blue() - b.blue()) <= 2;
    }
    /// Pixels of a picture that differ from the bare image.
    int painted(const QImage& picture, const QRect& part) const
    {
        int count = 0;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x)
                count += !near(picture.pixelColor(x, y), _plain);
        }
        return count;
    }
    /// An upright cross of a colour, and nothing beyond its arms.
    void expectCross(const QImage& picture, QPoint centre, int arm, const QColor& color)
    {
        for (const QPoint way : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            EXPECT_TRUE(near(picture.pixelColor(centre + (arm - 1) * way), color))
                << "arm " << way.x() << " " << way.y();
            EXPECT_TRUE(near(picture.pixelColor(centre + (arm + 3) * way), _plain));
        }
        EXPECT_TRUE(near(picture.pixelColor(centre + QPoint(4, 4)), _plain));
    }

    DrawnImage _view;
    QColor _plain;
};

INSTANTIATE_TEST_SUITE_P(Colouring, Overlays, testing::Bool(),
                         [](const auto& row) { return row.param ? "Shaders" : "Processor"; });

TEST_P(Overlays, TheBeamCentreIsARedCrossAtEveryZoom)
{
    MBasicImageOptionalData<> edit;
    edit.set_beam_center_x(500.5F);
    edit.set_beam_center_y(400.25F);
    _view.service->applyHeaderToSeries(edit);
    for (int power = -2; power <= 6; ++power) {
        const double zoom = std::ldexp(1.0, power);
        look(500.5 - 100 / zoom, 400.25 - 90 / zoom, power);
        const QImage picture = grab();
        if (power < 6)
            expectCross(picture, {100, 90}, 10, Qt::red);
        else
            EXPECT_TRUE(near(picture.pixelColor(109, 90), Qt::red));
    }
    // Half of it at the border of the view, and out of view.
    look(500.5, 400.25 - 50, 0);
    EXPECT_TRUE(near(grab().pixelColor(8, 50), Qt::red));
    look(520, 400, 0);
    EXPECT_EQ(painted(grab(), QRect(0, 0, 400, 300)), 0);
}

TEST_P(Overlays, PeaksAreBlueAndHighlightedOnesGreen)
{
    MImage image = images::uniform(1000, 800, 0);
    auto* pixels = static_cast<int*>(image.data());
    const auto at = [](int x, int y) { return std::size_t(y) * 1000 + std::size_t(x); };
    pixels[at(350, 300)] = 900;
    pixels[at(400, 300)] = 800;
    pixels[at(450, 300)] = 700;
    ASSERT_TRUE(_view.open(image));
    _view.service->setContrastData({1e6, -1, MColorTable::grey(), false});
    _plain = grab().pixelColor(200, 150);
    PeakData peaks;
    peaks.defined = true;
    peaks.numberOfPeaks = 2;
    peaks.highlightedPeaks = {1, 2, 77};
    _view.service->setPeakData(peaks);
    look(300, 250, 0);
    const QImage picture = grab();
    EXPECT_TRUE(near(picture.pixelColor(54, 50), Qt::blue)) << "of the strongest one";
    EXPECT_TRUE(near(picture.pixelColor(58, 50), _plain));
    EXPECT_TRUE(near(picture.pixelColor(109, 50), Qt::green)) << "of the second";
    EXPECT_EQ(painted(picture, QRect(130, 30, 60, 40)), 0) << "the third has none";
    look(300, 250, 2);
    EXPECT_TRUE(near(grab().pixelColor(202 + 4, 202), Qt::blue)) << "in the middle of its pixel";
    for (const int offset : {0, 1, 2, 3}) {
        look(300 + offset, 250, 0);
        EXPECT_EQ(painted(grab(1.5), QRect(60, 60, 30, 30)), 2 * 18 * 2 - 4)
            << "two pixels wide at a scale of 1.5, wherever it stands";
    }
    peaks.numberOfPeaks = 0;
    _view.service->setPeakData(peaks);
    EXPECT_EQ(painted(grab(), QRect(0, 0, 400, 300)), 0);
}

TEST_P(Overlays, ThePaintListIsDrawnInItsColours)
{
    MDrawingList<> list;
    list.pushBack(MDrawingPixel(340, 290, 255, 0, 0));
    list.pushBack(MDrawingLine(400, 300, 440, 300, 0, 255, 0));
    list.pushBack(MDrawingString(340, 400, "Text", 255, 255, 255));
    list.pushBack(MDrawingEllipse(500, 400, 40, 10, std::acos(-1.0) / 2, 0, 0, 255));
    list.pushBack(MDrawingLine(-1e9, 520, 1e9, 520, 255, 255, 0));
    list.pushBack(MDrawingEllipse(700, 400 - 1e7, 1e7, 1e7, 1, 255, 0, 255));
    const double nan = std::nan("");
    list.pushBack(MDrawingPixel(nan, nan));
    list.pushBack(MDrawingEllipse(500, 400, nan, 1e300, nan));
    list.pushBack(MDrawingString(1e300, -1e300, "far"));
    _view.service->setPaintList(list);
    look(300, 250, 0);
    const QImage picture = grab();
    expectCross(picture, {40, 40}, 10, Qt::red);
    EXPECT_TRUE(near(picture.pixelColor(120, 50), Qt::green));
    EXPECT_TRUE(near(picture.pixelColor(120, 49), _plain));
    EXPECT_GT(painted(picture, QRect(40, 136, 36, 16)), 20) << "text stands on its point";
    EXPECT_EQ(painted(picture, QRect(40, 156, 36, 6)), 0);
    const auto colour = [&](const QRect& part, const QColor& wanted) {
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                if (near(picture.pixelColor(x, y), wanted))
                    return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(colour(QRect(198, 188, 4, 5), Qt::blue)) << "lower end of the upright ellipse";
    EXPECT_TRUE(colour(QRect(208, 148, 4, 5), Qt::blue)) << "its right end";
    EXPECT_TRUE(colour(QRect(388, 269, 4, 4), Qt::yellow)) << "a line from far away";
    EXPECT_TRUE(colour(QRect(398, 148, 2, 4), Qt::magenta)) << "an ellipse of ten million pixels";
    _view.service->clearPaintList();
    EXPECT_EQ(painted(grab(), QRect(0, 0, 400, 300)), 0);
}

TEST_P(Overlays, ABoxIsDarkenedWithAnOutlineAtEveryZoom)
{
    for (int power = -2; power <= 5; ++power) {
        const double zoom = std::ldexp(1.0, power);
        // Ends before its begin: both are drawn alike.
        show(regions::box(420, 400, 400, 380));
        look(400 - 64 / zoom, 380 - 96 / zoom, power);
        const QImage picture = grab();
        const int size = std::min(int(20 * zoom), 200);
        EXPECT_TRUE(near(picture.pixelColor(64 - 4, 96 - 4), _plain)) << power;
        if (size >= 10) {
            EXPECT_TRUE(near(picture.pixelColor(64 + size / 2, 96 + size / 2), under(150)))
                << power;
        }
        EXPECT_TRUE(near(picture.pixelColor(64, 96), Qt::white)) << "the first dash is white";
        EXPECT_TRUE(near(picture.pixelColor(63, 95), Qt::white)) << power;
        if (size == 200) {
            EXPECT_TRUE(near(picture.pixelColor(64 + 30, 96), Qt::black)) << "then a gap";
        }
    }
}

TEST_P(Overlays, ALineRunsBetweenItsMarks)
{
    show(regions::line(350, 300, 450, 300));
    look(300, 250, 0);
    const QImage picture = grab();
    EXPECT_TRUE(near(picture.pixelColor(50, 50), _plain)) << "a mark is a ring";
    EXPECT_GT(painted(picture, QRect(44, 44, 12, 12)), 20);
    EXPECT_TRUE(near(picture.pixelColor(60, 50), Qt::white));
    EXPECT_TRUE(near(picture.pixelColor(85, 50), Qt::black));
    EXPECT_TRUE(near(picture.pixelColor(150, 50), _plain));
    // Every slope, and none.
    for (const QPoint end :
         {QPoint(350, 300), QPoint(350, 390), QPoint(440, 390), QPoint(351, 300)}) {
        show(regions::line(350, 300, end.x(), end.y()));
        EXPECT_GT(painted(grab(), QRect(44, 44, 12, 12)), 20);
    }
}

TEST_P(Overlays, ACircleIsDarkerThanItsSurround)
{
    show(regions::circle(450, 400, 100));
    look(300, 250, 0);
    const QImage picture = grab();
    EXPECT_TRUE(near(picture.pixelColor(150, 150 - 40), under(100 + 100 - 39))) << "twice";
    EXPECT_TRUE(near(picture.pixelColor(150, 150 + 110), under(100)));
    EXPECT_TRUE(near(picture.pixelColor(150, 150 + 130), _plain));
    EXPECT_TRUE(near(picture.pixelColor(60, 150), Qt::white)) << "the diameter";
    EXPECT_TRUE(near(picture.pixelColor(85, 150), Qt::black));
}

TEST_P(Overlays, OnlyTheRingOfAPowderRegionIsDarkened)
{
    show(regions::powder(500, 400, 60, 120));
    for (const double farAway : {0.0, 1.0}) {
        look(300, 250, 0);
        // The same ring from far within its centre's neighbourhood at the highest zoom.
        if (farAway > 0)
            look(500 + 60 - 100 / 32.0, 400 - 150 / 32.0, 5);
        const QImage picture = grab();
        const QPoint rim = farAway > 0 ? QPoint(100, 150) : QPoint(260, 150);
        EXPECT_TRUE(near(picture.pixelColor(rim - QPoint(20, 0)), _plain));
        EXPECT_TRUE(near(picture.pixelColor(rim + QPoint(20, 0)), under(160)));
        EXPECT_FALSE(near(picture.pixelColor(rim), _plain));
        EXPECT_FALSE(near(picture.pixelColor(rim), under(160)));
    }
    show(regions::powder(500, 400, -1, 120));
    EXPECT_EQ(painted(grab(), QRect(0, 0, 400, 300)), 0);
}

TEST_P(Overlays, ValuesAreWrittenAtTheHighestZoomOnly)
{
    for (int power = -2; power <= 6; ++power) {
        look(500, 400, power);
        const QRect image = _view.drawer->imageBoundary();
        EXPECT_EQ(painted(grab(), image.adjusted(0, 0, -1, -1)) > 0, power == 6) << power;
    }
    const QImage picture = grab();
    EXPECT_GT(painted(picture, QRect(64, 64 + 44, 20, 18)), 10) << "at the pixel's lower left";
    EXPECT_EQ(painted(picture, QRect(64, 64, 64, 38)), 0);
    // Text is black on bright pixels, white on dark ones; half-visible images have values too.
    _view.service->setContrastData({6, 0, MColorTable::grey(), false});
    look(-1, -1, 6);
    const QImage bright = grab();
    bool black = false;
    for (int x = 64; x < 128; ++x)
        black |= near(bright.pixelColor(x, 64 + 52), Qt::black);
    EXPECT_TRUE(black);
    EXPECT_EQ(bright.pixelColor(30, 30), QColor(Qt::darkGray));
    look(999.5, 799.5, 6);
    EXPECT_EQ(grab().pixelColor(100, 100), QColor(Qt::darkGray));
}

TEST_P(Overlays, TheBoxOfValuesFollowsTheCursorAndStaysInTheView)
{
    look(300, 250, 0);
    const auto boxed = [&](QPoint cursor) {
        mouse::enter(*_view.drawer, cursor);
        return _view.drawer->grab();
    };
    const QColor dark = under(150);
    const QImage first = boxed({40, 50});
    EXPECT_TRUE(near(first.pixelColor(40 + 13, 50 + 3), dark));
    EXPECT_TRUE(near(first.pixelColor(40 + 199, 50 + 67), dark)) << "four rows with geometry";
    EXPECT_TRUE(near(first.pixelColor(40 + 10, 50 + 10), _plain));
    EXPECT_TRUE(near(first.pixelColor(40 + 201, 50 + 10), _plain));
    EXPECT_TRUE(near(first.pixelColor(40 + 100, 50 + 69), _plain));
    EXPECT_TRUE(near(boxed({200, 50}).pixelColor(399, 100), dark));
    const QImage corner = boxed({390, 290});
    EXPECT_TRUE(near(corner.pixelColor(389, 229), dark));
    EXPECT_TRUE(near(corner.pixelColor(392, 229), _plain));
    _view.hideCursor();
    EXPECT_EQ(painted(_view.drawer->grab(), QRect(0, 0, 400, 300)), 0);
    look(-350, 250, 0);
    EXPECT_EQ(boxed({40, 50}).pixelColor(60, 60), QColor(Qt::darkGray)) << "beside the image";
}

TEST_P(Overlays, NothingButRingsStandsOverTheHeightMap)
{
    if (!GetParam())
        return;  // always flat
    show(regions::box(350, 300, 500, 400));
    look(300, 250, 0);
    _view.service->setPlottingMode(PlottingMode::ThreeDimensional);
    const QImage withRegion = grab();
    show(StatisticsData());
    EXPECT_EQ(grab(), withRegion);
}

class Rings : public Overlays {
protected:
    /// Beam centre in the middle of the image; the whole of it at a quarter of its size.
    void SetUp() override
    {
        ASSERT_TRUE(_view.open(images::withGeometry(1000, 800, 6, 500, 400)));
        _view.service->setContrastData({10, 0, MColorTable::grey(), false});
        _plain = grab().pixelColor(10, 10);
        look(-300, -200, -2);
        _view.service->toggleShowResolutionRings(true);
    }
    std::vector<double> radii(int count)
    {
        double x = 0;
        double y = 0;
        std::vector<double> result;
        std::vector<QString> labels;
        _view.service->recommendResolutionRadius(count, x, y, result, labels);
        return result;
    }
    static bool isBlue(const QColor& c) { return c.blue() > c.red() + 60; }
    /// Is there blue on one of the three pixels around a place of a row?
    static bool blueAt(const QImage& picture, int x, int y)
    {
        return isBlue(picture.pixelColor(x - 1, y)) || isBlue(picture.pixelColor(x, y)) ||
               isBlue(picture.pixelColor(x + 1, y));
    }
};

INSTANTIATE_TEST_SUITE_P(Colouring, Rings, testing::Bool(),
                         [](const auto& row) { return row.param ? "Shaders" : "Processor"; });

TEST_P(Rings, StandAtTheirRadiiWithLabelsAtEveryZoom)
{
    for (int power = -2; power <= 6; ++power) {
        const double zoom = std::ldexp(1.0, power);
        // Half of the view left of the beam centre; the image's left edge may be within it.
        look(500 - 100 / zoom, 400 - 150 / zoom, power);
        const QRectF visible = _view.drawer->visibleRange();
        const std::vector<double> expected = radii(int(3 * 1000 / visible.width()));
        const QImage picture = grab();
        int found = 0;
        for (const double radius : expected) {
            const int x = 100 + int(radius * zoom);
            if (x >= 398 || x <= 150 || 500 + radius >= 990)
                continue;
            ++found;
            EXPECT_TRUE(blueAt(picture, x, 152)) << "radius " << radius << " at power " << power;
        }
        EXPECT_GE(found, power >= -1 ? 1 : 0) << power;
    }
}

TEST_P(Rings, AreClippedToTheImageAndLabelledOnWhite)
{
    look(-300, -200, -2);
    const QImage picture = grab();
    const QRect image = _view.drawer->imageBoundary();
    ASSERT_EQ(image, QRect(75, 50, 250, 200));
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 400; ++x) {
            if (!image.adjusted(-1, -1, 1, 1).contains(x, y)) {
                ASSERT_EQ(picture.pixelColor(x, y), QColor(Qt::darkGray)) << x << " " << y;
            }
        }
    }
    int white = 0;
    for (int y = image.top(); y <= image.bottom(); ++y) {
        for (int x = image.left(); x <= image.right(); ++x)
            white += picture.pixelColor(x, y) == QColor(Qt::white);
    }
    EXPECT_GT(white, 1000);
    _view.service->toggleShowResolutionRings(false);
    EXPECT_EQ(painted(grab(), QRect(80, 55, 100, 80)), 0);
}

TEST_P(Rings, StandOverTheHeightMapToo)
{
    if (!GetParam())
        return;
    _view.service->setPlottingMode(PlottingMode::ThreeDimensional);
    const QImage with = grab();
    _view.service->toggleShowResolutionRings(false);
    EXPECT_NE(grab(), with);
}

TEST_P(Rings, AnImageThatHasLeftTheViewHasNone)
{
    look(5000, 5000, 0);
    const QImage picture = grab();
    for (const QPoint at : {QPoint(0, 0), QPoint(200, 150), QPoint(399, 299)})
        EXPECT_EQ(picture.pixelColor(at), QColor(Qt::darkGray));
    look(999.999, 100, 6);  // a last sliver
    (void)grab();
}

TEST(OverlaySharpness, LinesAndTextsUseAllPixelsOfTheScreen)
{
    DrawnImage view(QSize(400, 300));
    ASSERT_TRUE(view.open(images::withGeometry(1000, 800, 6, -5000, -5000)));
    view.service->setContrastData({10, 0, MColorTable::grey(), false});
    view.service->setViewportData(ViewportData(300, 250, 0, 0, 0));
    view.service->setStatisticsData(regions::box(340, 290, 440, 390));
    for (const double ratio : {1.0, 1.5, 2.0}) {
        view.hideCursor();
        const QImage picture = view.drawer->grab(ratio);
        ASSERT_EQ(picture.size(), QSize(qRound(400 * ratio), qRound(300 * ratio)));
        const auto at = [&](double x, double y) {
            return picture.pixelColor(int(x * ratio), int(y * ratio));
        };
        EXPECT_EQ(at(90, 90), at(60, 60)) << "evenly dark";
        EXPECT_NE(at(90, 90), at(30, 90));
        // The outline is two widget pixels wide: no less and no more at any ratio.
        int edge = 0;
        for (int y = int(34 * ratio); y < int(46 * ratio); ++y)
            edge += picture.pixelColor(int(48 * ratio), y).red() > 250;
        EXPECT_EQ(edge, int(2 * ratio)) << ratio;
    }
}

}  // namespace
