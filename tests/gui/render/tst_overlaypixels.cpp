// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the overlays of the main view put on its pixels.
#include "tests/gui/render/MouseEvents.h"
#include "tests/gui/render/SharedView.h"
#include "tests/support/Regions.h"

#include <cmath>

namespace {

using namespace morvend::imglib;

bool near(const QColor& a, const QColor& b)
{
    return std::abs(a.red() - b.red()) <= 2 && std::abs(a.green() - b.green()) <= 2 &&
           std::abs(a.blue() - b.blue()) <= 2;
}

/// The pixels of a part that a condition holds for.
template <class Condition>
int count(const QImage& picture, const QRect& part, Condition&& condition)
{
    int found = 0;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            found += condition(picture.pixelColor(x, y));
    return found;
}

/// With shaders alone: without them a view draws its overlays by the same painter.
class Overlays : public SharedView<ImageDrawerMain> {
protected:
    Overlays()
        : SharedView(QSize(400, 300))
    {}

    /// An image of 1000 by 800 pixels in one grey; pixel (300, 250) stands in the view's corner.
    void SetUp() override { begin(-5000, -5000); }
    void begin(float beamX, float beamY)
    {
        ASSERT_TRUE(_view.openAnew(images::withGeometry(1000, 800, 6, beamX, beamY)));
        setGrey(10);
        _plain = grab().pixelColor(10, 10);
        ASSERT_GT(_plain.red(), 100);
        ASSERT_LT(_plain.red(), 200);
    }

    QImage grab(double ratio = 1)
    {
        _view.hideCursor();
        return drawer().grab(ratio);
    }
    void show(const StatisticsData& region) { service().setStatisticsData(region); }
    /// Comes from another zoom, since at the same one a view refuses wider borders.
    void look(double x, double y, int power)
    {
        SharedView::look(x, y, power < 0 ? power + 1 : power - 1);
        SharedView::look(x, y, power);
    }
    /// The plain colour under black of an alpha.
    QColor under(int alpha) const
    {
        const int grey = qRound(_plain.red() * (255 - alpha) / 255.0);
        return {grey, grey, grey};
    }
    /// Pixels of a picture that differ from the bare image.
    int painted(const QImage& picture, const QRect& part = {0, 0, 400, 300}) const
    {
        return count(picture, part, [&](const QColor& c) { return !near(c, _plain); });
    }
    struct Pixel {
        QPoint at;
        QColor colour;
        const char* what = "";
    };
    static void expectPixels(const QImage& picture, const std::vector<Pixel>& pixels)
    {
        for (const auto& [at, colour, what] : pixels)
            EXPECT_TRUE(near(picture.pixelColor(at), colour))
                << at.x() << ", " << at.y() << ' ' << what << ": "
                << picture.pixelColor(at).name().toStdString();
    }
    /// An upright cross of a colour, and nothing beyond its arms.
    void expectCross(const QImage& picture, QPoint centre, int arm, const QColor& color)
    {
        for (const QPoint way : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)})
            expectPixels(picture,
                         {{centre + (arm - 1) * way, color}, {centre + (arm + 3) * way, _plain}});
        expectPixels(picture, {{centre + QPoint(4, 4), _plain}});
    }

    QColor _plain;
};

TEST_F(Overlays, TheBeamCentreIsARedCrossAtEveryZoom)
{
    MBasicImageOptionalData<> edit;
    edit.set_beam_center_x(500.5F);
    edit.set_beam_center_y(400.25F);
    service().applyHeaderToSeries(edit);
    for (int power = -2; power <= 6; ++power) {
        const double zoom = std::ldexp(1.0, power);
        look(500.5 - 100 / zoom, 400.25 - 90 / zoom, power);
        const QImage picture = grab();
        if (power < 6)
            expectCross(picture, {100, 90}, 10, Qt::red);
        else
            expectPixels(picture, {{{109, 90}, Qt::red}});
    }
    look(500.5, 400.25 - 50, 0);
    expectPixels(grab(), {{{8, 50}, Qt::red, "at the border of the view"}});
    look(520, 400, 0);
    EXPECT_EQ(painted(grab()), 0);
}

TEST_F(Overlays, PeaksAreBlueAndHighlightedOnesGreen)
{
    MImage image = images::uniform(1000, 800, 0);
    for (const int rank : {0, 1, 2})
        static_cast<int*>(image.data())[300 * 1000 + 350 + 50 * rank] = 900 - 100 * rank;
    ASSERT_TRUE(_view.open(image));
    setGrey(1e6, -1);
    _plain = grab().pixelColor(200, 150);
    PeakData peaks;
    peaks.defined = true;
    peaks.numberOfPeaks = 2;
    peaks.highlightedPeaks = {1, 2, 77};
    service().setPeakData(peaks);
    EXPECT_EQ(service().computedPeaks().numberOfPeaks(), 0) << "searched for on another thread";
    ASSERT_TRUE(waitFor([&] { return !service().peaksPending(); }));
    look(300, 250, 0);
    const QImage picture = grab();
    expectPixels(picture, {{{54, 50}, Qt::blue, "of the strongest one"},
                           {{58, 50}, _plain},
                           {{109, 50}, Qt::green, "of the second"}});
    EXPECT_EQ(painted(picture, QRect(130, 30, 60, 40)), 0) << "the third has none";
    look(300, 250, 2);
    expectPixels(grab(), {{{202 + 4, 202}, Qt::blue, "in the middle of its pixel"}});
    for (const int offset : {0, 1, 2, 3}) {
        look(300 + offset, 250, 0);
        EXPECT_EQ(painted(grab(1.5), QRect(60, 60, 30, 30)), 2 * 18 * 2 - 4)
            << "two pixels wide at a scale of 1.5, wherever it stands";
    }
    peaks.numberOfPeaks = 0;
    service().setPeakData(peaks);
    EXPECT_EQ(painted(grab()), 0);
}

TEST_F(Overlays, ThePaintListIsDrawnInItsColours)
{
    const double nan = std::nan("");
    MDrawingList<> list;
    list.pushBack(MDrawingPixel(340, 290, 255, 0, 0));
    list.pushBack(MDrawingLine(400, 300, 440, 300, 0, 255, 0));
    list.pushBack(MDrawingString(340, 400, "Text", 255, 255, 255));
    list.pushBack(MDrawingEllipse(500, 400, 40, 10, std::acos(-1.0) / 2, 0, 0, 255));
    list.pushBack(MDrawingLine(-1e9, 520, 1e9, 520, 255, 255, 0));
    list.pushBack(MDrawingEllipse(700, 400 - 1e7, 1e7, 1e7, 1, 255, 0, 255));
    list.pushBack(MDrawingPixel(nan, nan));
    list.pushBack(MDrawingEllipse(500, 400, nan, 1e300, nan));
    list.pushBack(MDrawingString(1e300, -1e300, "far"));
    service().setPaintList(list);
    look(300, 250, 0);
    const QImage picture = grab();
    expectCross(picture, {40, 40}, 10, Qt::red);
    expectPixels(picture, {{{120, 50}, Qt::green}, {{120, 49}, _plain}});
    EXPECT_GT(painted(picture, QRect(40, 136, 36, 16)), 20) << "text stands on its point";
    EXPECT_EQ(painted(picture, QRect(40, 156, 36, 6)), 0);
    const auto colour = [&](const QRect& part, const QColor& wanted) {
        return count(picture, part, [&](const QColor& c) { return near(c, wanted); }) > 0;
    };
    EXPECT_TRUE(colour(QRect(198, 188, 4, 5), Qt::blue)) << "lower end of the upright ellipse";
    EXPECT_TRUE(colour(QRect(208, 148, 4, 5), Qt::blue)) << "its right end";
    EXPECT_TRUE(colour(QRect(388, 269, 4, 4), Qt::yellow)) << "a line from far away";
    EXPECT_TRUE(colour(QRect(398, 148, 2, 4), Qt::magenta)) << "an ellipse of ten million pixels";
    service().clearPaintList();
    EXPECT_EQ(painted(grab()), 0);
}

TEST_F(Overlays, ABoxIsDarkenedWithAnOutlineAtEveryZoom)
{
    for (int power = -2; power <= 5; ++power) {
        SCOPED_TRACE(power);
        const double zoom = std::ldexp(1.0, power);
        // Ends before its start: both are drawn alike.
        show(regions::box(420, 400, 400, 380));
        look(400 - 64 / zoom, 380 - 96 / zoom, power);
        const QImage picture = grab();
        const int size = std::min(int(20 * zoom), 200);
        expectPixels(picture, {{{60, 92}, _plain},
                               {{64, 96}, Qt::white, "the first dash"},
                               {{63, 95}, Qt::white, "it is two pixels wide"}});
        if (size >= 10)
            expectPixels(picture, {{{64 + size / 2, 96 + size / 2}, under(150)}});
        if (size == 200)
            expectPixels(picture, {{{64 + 30, 96}, Qt::black, "then a gap"}});
    }
}

TEST_F(Overlays, ALineRunsBetweenItsMarks)
{
    show(regions::line(350, 300, 450, 300));
    look(300, 250, 0);
    expectPixels(grab(), {{{50, 50}, _plain, "a mark is a ring"},
                          {{60, 50}, Qt::white},
                          {{85, 50}, Qt::black},
                          {{150, 50}, _plain}});
    for (const QPoint end :
         {QPoint(350, 300), QPoint(350, 390), QPoint(440, 390), QPoint(351, 300)}) {
        show(regions::line(350, 300, end.x(), end.y()));
        EXPECT_GT(painted(grab(), QRect(44, 44, 12, 12)), 20);
    }
}

TEST_F(Overlays, ACircleIsDarkerThanItsSurround)
{
    show(regions::circle(450, 400, 100));
    look(300, 250, 0);
    expectPixels(grab(), {{{150, 150 - 40}, under(100 + 100 - 39), "twice"},
                          {{150, 150 + 110}, under(100)},
                          {{150, 150 + 130}, _plain},
                          {{60, 150}, Qt::white, "the diameter"},
                          {{85, 150}, Qt::black}});
}

TEST_F(Overlays, OnlyTheRingOfAPowderRegionIsDarkened)
{
    show(regions::powder(500, 400, 60, 120));
    for (const bool farAway : {false, true}) {
        look(300, 250, 0);
        // The same ring from far within its centre's neighbourhood at the highest zoom.
        if (farAway)
            look(500 + 60 - 100 / 32.0, 400 - 150 / 32.0, 5);
        const QImage picture = grab();
        const QPoint rim = farAway ? QPoint(100, 150) : QPoint(260, 150);
        expectPixels(picture, {{rim - QPoint(20, 0), _plain}, {rim + QPoint(20, 0), under(160)}});
        EXPECT_FALSE(near(picture.pixelColor(rim), _plain));
        EXPECT_FALSE(near(picture.pixelColor(rim), under(160)));
    }
    show(regions::powder(500, 400, -1, 120));
    EXPECT_EQ(painted(grab()), 0);
}

TEST_F(Overlays, ValuesAreWrittenAtTheHighestZoomOnly)
{
    for (const int power : {-2, 0, 5, 6}) {
        look(500, 400, power);
        const QRect image = drawer().imageBoundary();
        EXPECT_EQ(painted(grab(), image.adjusted(0, 0, -1, -1)) > 0, power == 6) << power;
    }
    const QImage picture = grab();
    EXPECT_GT(painted(picture, QRect(64, 64 + 44, 20, 18)), 10) << "at the pixel's lower left";
    EXPECT_EQ(painted(picture, QRect(64, 64, 64, 38)), 0);
    // Text is black on bright pixels, white on dark ones; half-visible images have values too.
    setGrey(6);
    look(-1, -1, 6);
    const QImage bright = grab();
    const auto isBlack = [](const QColor& c) { return near(c, Qt::black); };
    EXPECT_GT(count(bright, QRect(64, 64 + 52, 64, 1), isBlack), 0);
    EXPECT_EQ(bright.pixelColor(30, 30), QColor(Qt::darkGray));
    look(999.5, 799.5, 6);
    EXPECT_EQ(grab().pixelColor(100, 100), QColor(Qt::darkGray));
}

TEST_F(Overlays, TheBoxOfValuesFollowsTheCursorAndStaysInTheView)
{
    look(300, 250, 0);
    const auto boxed = [&](QPoint cursor) {
        mouse::enter(drawer(), cursor);
        return drawer().grab();
    };
    const QColor dark = under(150);
    expectPixels(boxed({40, 50}), {{{40 + 13, 50 + 3}, dark},
                                   {{40 + 199, 50 + 67}, dark, "four rows with geometry"},
                                   {{40 + 10, 50 + 10}, _plain},
                                   {{40 + 201, 50 + 10}, _plain},
                                   {{40 + 100, 50 + 69}, _plain}});
    expectPixels(boxed({200, 50}), {{{399, 100}, dark}});
    expectPixels(boxed({390, 290}), {{{389, 229}, dark}, {{392, 229}, _plain}});
    EXPECT_EQ(painted(grab()), 0);
    look(-350, 250, 0);
    EXPECT_EQ(boxed({40, 50}).pixelColor(60, 60), QColor(Qt::darkGray)) << "beside the image";
}

class Rings : public Overlays {
protected:
    /// Beam centre in the middle of the image; the whole of it at a quarter of its size.
    void SetUp() override
    {
        begin(500, 400);
        look(-300, -200, -2);
        service().toggleShowResolutionRings(true);
    }
    std::vector<double> radii(int count)
    {
        double x = 0, y = 0;
        std::vector<double> result;
        std::vector<QString> labels;
        service().recommendResolutionRadius(count, x, y, result, labels);
        return result;
    }
};

TEST_F(Rings, StandAtTheirRadiiAtEveryZoom)
{
    for (int power = -2; power <= 6; ++power) {
        const double zoom = std::ldexp(1.0, power);
        // Half of the view left of the beam centre; the image's left edge may be within it.
        look(500 - 100 / zoom, 400 - 150 / zoom, power);
        const QImage picture = grab();
        int found = 0;
        for (const double radius : radii(int(3 * 1000 / drawer().visibleRange().width()))) {
            const int x = 100 + int(radius * zoom);
            if (x >= 398 || x <= 150 || 500 + radius >= 990)
                continue;
            ++found;
            EXPECT_GT(count(picture, QRect(x - 1, 152, 3, 1),
                            [](const QColor& c) { return c.blue() > c.red() + 60; }),
                      0)
                << "radius " << radius << " at power " << power;
        }
        EXPECT_GE(found, power >= -1 ? 1 : 0) << power;
    }
}

TEST_F(Rings, FollowTheBeamCentreAndTheDistanceOfTheHeader)
{
    const auto isRing = [](const QColor& c) { return c.blue() > c.red() + 60; };
    // Left of its centre, where no label stands.
    const auto expectFirst = [&](double beamX, double beamY) {
        const QPoint left(drawer().screenX(beamX - radii(3)[0]), drawer().screenY(beamY));
        EXPECT_GT(count(grab(), QRect(left - QPoint(1, 1), QSize(3, 3)), isRing), 0)
            << beamX << " " << beamY;
    };
    expectFirst(500, 400);
    TarvikService::Header header = service().optionalData();
    header.set_beam_center_x(620.0F);
    header.set_beam_center_y(300.0F);
    service().applyHeaderToSeries(header);
    expectFirst(620, 300);
    header.set_detector_distance(*header.detector_distance() * 0.7F);
    service().applyHeaderToSeries(header);
    expectFirst(620, 300);
    service().resetHeader();
    expectFirst(500, 400);
    ASSERT_TRUE(_view.open(images::withGeometry(1000, 800, 6, 350, 500)));
    expectFirst(350, 500);
}

TEST_F(Rings, AreClippedToTheImageAndLabelledOnWhite)
{
    const QImage picture = grab();
    const auto is = [](Qt::GlobalColor colour) {
        return [colour](const QColor& c) { return c == QColor(colour); };
    };
    const QRect image = drawer().imageBoundary(), view(0, 0, 400, 300);
    ASSERT_EQ(image, QRect(75, 50, 250, 200));
    for (const QRect& beside : {QRect(0, 0, 400, 49), QRect(0, 251, 400, 49), QRect(0, 0, 74, 300),
                                QRect(326, 0, 74, 300)})
        EXPECT_EQ(count(picture, beside, is(Qt::darkGray)), beside.width() * beside.height());
    EXPECT_GT(count(picture, image, is(Qt::white)), 1000);
    service().toggleShowResolutionRings(false);
    EXPECT_EQ(painted(grab(), QRect(80, 55, 100, 80)), 0);
    service().toggleShowResolutionRings(true);
    look(5000, 5000, 0);
    EXPECT_EQ(count(grab(), view, is(Qt::darkGray)), 400 * 300) << "an image out of view has none";
    look(999.999, 100, 6);  // a last sliver
    (void)grab();
}

TEST_F(Rings, AloneStandOverTheHeightMap)
{
    drawer().setPlottingMode(PlottingMode::ThreeDimensional);
    const QImage with = grab();
    show(regions::box(350, 300, 500, 400));
    EXPECT_EQ(grab(), with) << "no region";
    service().toggleShowResolutionRings(false);
    EXPECT_NE(grab(), with);
}

TEST(OverlaySharpness, LinesAndTextsUseAllPixelsOfTheScreen)
{
    DrawnImage view(QSize(400, 300));
    ASSERT_TRUE(view.open(images::withGeometry(1000, 800, 6, -5000, -5000)));
    view.service->setContrastData({10, 0, MColorTable::grey(), false});
    view.service->setViewportData(ViewportData(300, 250, 0, 0, 0));
    view.service->setStatisticsData(regions::box(340, 290, 440, 390));
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const QImage picture = view.drawer->grab(ratio);
        ASSERT_EQ(picture.size(), QSize(qRound(400 * ratio), qRound(300 * ratio)));
        const auto at = [&](double x, double y) {
            return picture.pixelColor(int(x * ratio), int(y * ratio));
        };
        EXPECT_EQ(at(90, 90), at(60, 60)) << "evenly dark";
        EXPECT_NE(at(90, 90), at(30, 90));
        // The outline is two widget pixels wide: no less and no more at any ratio.
        const QRect across(int(48 * ratio), int(34 * ratio), 1, int(46 * ratio) - int(34 * ratio));
        EXPECT_EQ(count(picture, across, [](const QColor& c) { return c.red() > 250; }),
                  int(2 * ratio))
            << ratio;
    }
}

}  // namespace
