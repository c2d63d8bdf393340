// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the user does with the mouse to regions of interest, and what the service is told.
#include "gui/kit/PressedKeys.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/MouseEvents.h"
#include "tests/gui/render/TestImages.h"
#include "tests/gui/render/gestures/Regions.h"

#include <gtest/gtest.h>

#include <QKeyEvent>

#include <cmath>

namespace {

class RegionGestures : public testing::Test {
protected:
    RegionGestures()
        : _view(QSize(300, 200))
    {}

    /// Image pixel (350, 300) stands in the corner of the view.
    void SetUp() override
    {
        ASSERT_TRUE(_view.open(images::withGeometry(1000, 800, 5, 500.25F, 400.5F)));
        _view.service->setContrastData({10, 0, morvend::imglib::MColorTable::grey(), false});
        ASSERT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0));
    }

    void choose(int type)
    {
        StatisticsData region = this->region();
        region.roiType = type;
        _view.service->setStatisticsData(region);
    }
    void show(const StatisticsData& region) { _view.service->setStatisticsData(region); }
    StatisticsData region() const { return _view.service->statisticsData(); }
    ViewportData viewport() const { return _view.service->viewportData(); }
    ImageDrawerMain& drawer() { return *_view.drawer; }

    /// Is the cursor of the view a picture from the resources?
    bool cursorIs(const char* icon)
    {
        return drawer().cursor().shape() == Qt::BitmapCursor &&
               drawer().cursor().pixmap().toImage() == QPixmap(QString::fromLatin1(icon)).toImage();
    }

    DrawnImage _view;
};

TEST_F(RegionGestures, ARightDragWithoutAChosenKindDoesNothing)
{
    const StatisticsData before = region();
    mouse::drag(drawer(), Qt::RightButton, {20, 30}, {{60, 70}, {90, 80}});
    EXPECT_EQ(region(), before);
    EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0));
}

TEST_F(RegionGestures, ARightDragDrawsARegionAndFillsAllItsFields)
{
    for (const int type : {StatisticsData::Line, StatisticsData::Box, StatisticsData::Circle}) {
        show(StatisticsData());
        choose(type);
        mouse::drag(drawer(), Qt::RightButton, {20, 30}, {{60, 70}, {50, 70}});
        const StatisticsData drawn = region();
        EXPECT_TRUE(drawn.defined);
        EXPECT_TRUE(drawn.roiActive);
        EXPECT_EQ(drawn.roiType, type);
        EXPECT_EQ(QPoint(drawn.beginX, drawn.beginY), QPoint(370, 330));
        EXPECT_EQ(QPoint(drawn.endX, drawn.endY), QPoint(400, 370));
        EXPECT_EQ(QPoint(drawn.circleX, drawn.circleY), QPoint(370, 330));
        EXPECT_EQ(drawn.radius, 50);
        EXPECT_DOUBLE_EQ(drawn.theta, std::atan2(40, 30));
        EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0)) << "the image stays";
    }
}

TEST_F(RegionGestures, RegionsAreDrawnInImagePixelsAtAnyZoom)
{
    choose(StatisticsData::Box);
    for (int power = -2; power <= 6; ++power) {
        show(StatisticsData());
        choose(StatisticsData::Box);
        _view.service->setViewportData(ViewportData(100.5, 50.25, power, 0, 0));
        const double zoom = viewport().zoom();
        mouse::drag(drawer(), Qt::RightButton, {10, 20}, {{200, 150}});
        EXPECT_EQ(region().beginX, int(100.5 + 10 / zoom)) << power;
        EXPECT_EQ(region().beginY, int(50.25 + 20 / zoom));
        EXPECT_EQ(region().endX, int(100.5 + 200 / zoom));
        EXPECT_EQ(region().endY, int(50.25 + 150 / zoom));
    }
}

TEST_F(RegionGestures, APowderRingGrowsRoundTheBeamCentre)
{
    choose(StatisticsData::CentredCircle);
    // (350 + 190, 300 + 100) is 39 pixels from the beam centre, (350 + 200, ...) 49.
    mouse::drag(drawer(), Qt::RightButton, {190, 100}, {{195, 100}, {200, 100}});
    StatisticsData expected = regions::powder(500.25, 400.5, 39, 49);
    expected.endX = 550;
    expected.endY = 400;
    expected.radius = region().radius;
    expected.theta = region().theta;
    EXPECT_EQ(region(), expected);
}

TEST_F(RegionGestures, ControlSetsTheCentreOfAPowderRingAndWithItTheBeamCentre)
{
    choose(StatisticsData::CentredCircle);
    mouse::drag(drawer(), Qt::RightButton, {50, 60}, {{53, 64}, {80, 100}}, Qt::ControlModifier);
    EXPECT_EQ(region().powderX, 400);
    EXPECT_EQ(region().powderY, 360);
    EXPECT_EQ(region().innerRadius, 0);
    EXPECT_EQ(region().outerRadius, 50);
    double x = 0;
    double y = 0;
    _view.service->beamCentre(x, y);
    EXPECT_EQ(QPointF(x, y), QPointF(400, 360));

    // The same for a key that the table of held keys knows of.
    show(StatisticsData());
    choose(StatisticsData::CentredCircle);
    PressedKeys::record(QKeyEvent(QEvent::KeyPress, Qt::Key_Control, Qt::ControlModifier));
    mouse::drag(drawer(), Qt::RightButton, {150, 60}, {{150, 70}});
    EXPECT_EQ(region().powderX, 500);
    EXPECT_EQ(region().outerRadius, 10);
    PressedKeys::clear();
}

TEST_F(RegionGestures, WithoutBeamCentreAPowderRingIsNotDefined)
{
    ASSERT_TRUE(_view.open(images::uniform(1000, 800, 5)));
    choose(StatisticsData::CentredCircle);
    mouse::drag(drawer(), Qt::RightButton, {190, 100}, {{200, 100}});
    EXPECT_FALSE(region().centredCircleDefined());
    EXPECT_EQ(region().innerRadius, -1);
}

TEST_F(RegionGestures, TheCursorTellsWhatADragWillDo)
{
    struct Row {
        StatisticsData region;
        QPoint position;
        const char* icon;
        bool movesImage;
    };
    const StatisticsData box = regions::box(370, 330, 450, 400);
    const StatisticsData line = regions::line(370, 330, 450, 330);
    const StatisticsData circle = regions::circle(400, 370, 40);
    const StatisticsData ring = regions::powder(450, 400, 30, 60);
    for (const Row& row :
         {Row{box, {60, 60}, "", false}, Row{box, {20, 60}, ":icons/leftRightCursor.png", false},
          Row{box, {60, 100}, ":icons/upDownCursor.png", false},
          Row{box, {100, 100}, ":icons/crossArrowCursor.png", false},
          Row{box, {150, 150}, ":icons/crosscursor.xpm", true},
          Row{line, {20, 30}, ":icons/crossArrowCursor.png", false}, Row{line, {60, 30}, "", false},
          Row{circle, {50, 50}, "", false}, Row{circle, {70, 70}, ":icons/rotarrow.xpm", false},
          Row{circle, {50, 110}, ":icons/crossArrowCursor.png", false},
          Row{ring, {100, 100}, "", false}, Row{ring, {145, 100}, "", false},
          Row{ring, {131, 100}, ":icons/crossArrowCursor.png", false},
          Row{ring, {120, 100}, ":icons/crosscursor.xpm", true}}) {
        show(row.region);
        mouse::hover(drawer(), row.position);
        if (*row.icon)
            EXPECT_TRUE(cursorIs(row.icon)) << row.icon << row.position.x();
        else
            EXPECT_EQ(drawer().cursor().shape(), Qt::OpenHandCursor) << row.position.x();
        EXPECT_EQ(drawer().moveImage(), row.movesImage);
    }
    StatisticsData passive = box;
    passive.roiActive = false;
    show(passive);
    mouse::hover(drawer(), {60, 60});
    EXPECT_TRUE(cursorIs(":icons/crosscursor.xpm")) << "the user has chosen another tool";
}

TEST_F(RegionGestures, ADragOfTheBodyMovesTheRegionByAnyButtonAndNotTheImage)
{
    for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        const StatisticsData box = regions::box(370, 330, 450, 400);
        show(box);
        // The way leaves the region and the view: a drag keeps the role that it began with.
        mouse::drag(drawer(), button, {60, 60}, {{90, 60}, {290, 190}, {310, 250}, {70, 55}});
        StatisticsData expected = box;
        expected.beginX += 10, expected.endX += 10, expected.circleX += 10;
        expected.beginY -= 5, expected.endY -= 5, expected.circleY -= 5;
        EXPECT_EQ(region(), expected);
        EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0));
    }
}

TEST_F(RegionGestures, ADragBesideTheRegionMovesTheImage)
{
    const StatisticsData box = regions::box(370, 330, 450, 400);
    show(box);
    mouse::drag(drawer(), Qt::LeftButton, {200, 150}, {{190, 140}, {60, 60}});
    EXPECT_EQ(region(), box);
    EXPECT_EQ(viewport(), ViewportData(490, 390, 0, 0, 0));
}

TEST_F(RegionGestures, ACornerMayBeDraggedOverTheOppositeOne)
{
    show(regions::box(370, 330, 450, 400));
    mouse::drag(drawer(), Qt::LeftButton, {20, 30}, {{100, 90}, {180, 170}});
    EXPECT_EQ(region(), regions::box(530, 470, 450, 400));
    mouse::hover(drawer(), {180, 170});
    EXPECT_TRUE(cursorIs(":icons/crossArrowCursor.png"));
}

TEST_F(RegionGestures, TheDiameterOfACircleTurns)
{
    const StatisticsData circle = regions::circle(400, 370, 40);
    show(circle);
    mouse::drag(drawer(), Qt::LeftButton, {70, 70}, {{70, 75}, {50, 120}});
    StatisticsData expected = circle;
    expected.theta = std::atan2(50.0, 0.0);
    EXPECT_EQ(region(), expected);
}

TEST_F(RegionGestures, SlowDragsAtTheHighestZoomLoseNothing)
{
    const StatisticsData box = regions::box(400, 350, 402, 352);
    show(box);
    _view.service->setViewportData(ViewportData(399.5, 349.5, 6, 0, 0));
    std::vector<QPoint> way;
    for (int x = 61; x <= 60 + 2 * 64; ++x)
        way.emplace_back(x, 60);
    mouse::drag(drawer(), Qt::LeftButton, {60, 60}, way);
    EXPECT_EQ(region().beginX, 402);
    EXPECT_EQ(region().endX, 404);
    EXPECT_EQ(region().beginY, 350);
}

TEST_F(RegionGestures, TheCentreOfAPowderRingFollowsTheCursorAndKeepsOffTheBorder)
{
    show(regions::powder(450, 400, 10, 60));
    mouse::drag(drawer(), Qt::LeftButton, {100, 100}, {{120, 90}, {296, 90}});
    EXPECT_EQ(region().powderX, 470);
    EXPECT_EQ(region().powderY, 390);
    EXPECT_EQ(region().outerRadius, 60);
}

TEST_F(RegionGestures, TheMiddleButtonTurnsTheHeightMapOnly)
{
    mouse::drag(drawer(), Qt::MiddleButton, {100, 100}, {{110, 104}});
    EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0));
    _view.service->setPlottingMode(PlottingMode::ThreeDimensional);
    mouse::drag(drawer(), Qt::MiddleButton, {100, 100}, {{110, 104}, {120, 101}});
    EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0.5F, 10.0F));
    mouse::drag(drawer(), Qt::LeftButton, {100, 100}, {{90, 100}});
    EXPECT_EQ(viewport(), ViewportData(360, 300, 0, 0.5F, 10.0F)) << "the left button pans as ever";
}

TEST_F(RegionGestures, TheWheelStepsOnceHoweverFarItTurns)
{
    mouse::hover(drawer(), {100, 60});
    mouse::wheel(drawer(), {100, 60}, {0, 1200});
    EXPECT_EQ(viewport(), ViewportData(400, 330, 1, 0, 0));
    mouse::wheel(drawer(), {100, 60}, {0, 0});
    EXPECT_EQ(viewport(), ViewportData(400, 330, 1, 0, 0)) << "the end of a touch turns nothing";
    mouse::wheel(drawer(), {100, 60}, {0, -1});
    EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0));
    _view.service->setViewportData(ViewportData(400, 330, 6, 0, 0));
    mouse::wheel(drawer(), {100, 60}, {0, 120});
    EXPECT_EQ(viewport(), ViewportData(400, 330, 6, 0, 0)) << "no step beyond the highest zoom";
}

TEST(RegionGesturesAnywhere, NothingBreaksWithoutImageWithOnePixelOrWithoutSize)
{
    for (const bool glsl : {true, false}) {
        DrawnImage view(QSize(120, 90), glsl);
        for (const QSize image : {QSize(), QSize(1, 1), QSize(7, 1000)}) {
            if (!image.isEmpty()) {
                ASSERT_TRUE(
                    view.open(images::withGeometry(image.width(), image.height(), 5, 0.5F, 0.5F)));
            }
            view.service->toggleShowResolutionRings(true);
            PeakData peaks;
            peaks.defined = true;
            peaks.numberOfPeaks = 100;
            peaks.highlightedPeaks = {-1, 0, 99, 5000};
            view.service->setPeakData(peaks);
            for (const QSize size : {QSize(120, 90), QSize(0, 0), QSize(1, 1), QSize(33, 70)}) {
                view.drawer->resize(size);
                settle();
                for (int type = 0; type <= 5; ++type) {
                    StatisticsData region = view.service->statisticsData();
                    region.roiType = type;
                    view.service->setStatisticsData(region);
                    mouse::drag(*view.drawer, Qt::RightButton, {3, 4}, {{30, 40}, {-900, 5}});
                    mouse::drag(*view.drawer, Qt::LeftButton, {3, 4}, {{30, 40}, {9000, 5}});
                    (void)view.drawer->grab();
                }
                mouse::enter(*view.drawer, {1, 1});
                for (const int delta : {120, 120, 120, 120, 120, 120, -120})
                    view.drawer->zoom(delta);
                (void)view.drawer->grab();
                for (int step = 0; step < 9; ++step)
                    view.drawer->zoom(-1);
                (void)view.drawer->grab();
            }
        }
    }
}

}  // namespace
