// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the user does with the mouse to regions of interest, and what the service receives.
#include "gui/kit/PressedKeys.h"
#include "tests/gui/render/MouseEvents.h"
#include "tests/gui/render/SharedView.h"
#include "tests/support/Regions.h"

#include <QKeyEvent>

#include <cmath>

namespace {

const StatisticsData box = regions::box(370, 330, 450, 400);
const ViewportData atFirst(350, 300, 0, 0, 0);
const char* const corner = ":icons/crossArrowCursor.png";

class RegionGestures : public SharedView<ImageDrawerMain> {
protected:
    RegionGestures()
        : SharedView(QSize(300, 200))
    {}
    /// Image pixel (350, 300) stands in the corner of the view.
    void SetUp() override
    {
        ASSERT_TRUE(_view.openAnew(images::withGeometry(1000, 800, 5, 500.25F, 400.5F)));
        setGrey(10);
        ASSERT_EQ(viewport(), atFirst);
    }
    /// A kind of region to draw.
    void choose(int type)
    {
        StatisticsData region;
        region.roiType = type;
        show(region);
    }
    void show(const StatisticsData& region) { service().setStatisticsData(region); }
    StatisticsData region() const { return _view.service->statisticsData(); }
    void drag(Qt::MouseButton button, QPoint start, const std::vector<QPoint>& way,
              Qt::KeyboardModifiers keys = {})
    {
        mouse::drag(drawer(), button, start, way, keys);
    }
    /// Is the cursor of the view a picture from the resources?
    bool cursorIs(const char* icon)
    {
        return drawer().cursor().shape() == Qt::BitmapCursor &&
               drawer().cursor().pixmap().toImage() == QPixmap(QString::fromLatin1(icon)).toImage();
    }
};

TEST_F(RegionGestures, ARightDragDrawsARegionAndFillsAllItsFields)
{
    const StatisticsData before = region();
    // Halves of image pixels and fractions of a radius are cut off.
    look(350, 300, 1);
    drag(Qt::RightButton, {21, 31}, {{60, 70}, {90, 80}});
    EXPECT_EQ(region(), before) << "without a chosen kind";
    for (const int type : {StatisticsData::Line, StatisticsData::Box, StatisticsData::Circle}) {
        choose(type);
        drag(Qt::RightButton, {21, 31}, {{60, 70}, {51, 73}});
        StatisticsData expected = regions::between(type, 360, 315, 375, 336);
        expected.circleX = 360;
        expected.circleY = 315;
        expected.radius = 25;
        expected.theta = std::atan2(73 - 31, 51 - 21);
        expected.innerRadius = region().innerRadius;
        expected.outerRadius = region().outerRadius;
        EXPECT_EQ(region(), expected) << type;
        EXPECT_EQ(viewport(), ViewportData(350, 300, 1, 0, 0)) << "the image stays";
    }
}

TEST_F(RegionGestures, APowderRingGrowsRoundTheBeamCentre)
{
    // (350 + 190, 300 + 100) is 39 pixels from the beam centre, (350 + 180, ...) 29.
    for (const auto& [end, inner, outer] : {std::tuple(200, 39, 49), {180, 29, 39}}) {
        choose(StatisticsData::CentredCircle);
        drag(Qt::RightButton, {190, 100}, {{195, 100}, {170, 100}, {end, 100}});
        StatisticsData expected = regions::powder(500.25, 400.5, inner, outer);
        expected.endX = 350 + end;
        expected.endY = 400;
        expected.radius = region().radius;
        expected.theta = region().theta;
        EXPECT_EQ(region(), expected);
    }
}

TEST_F(RegionGestures, ControlSetsTheCentreOfAPowderRingAndWithItTheBeamCentre)
{
    choose(StatisticsData::CentredCircle);
    drag(Qt::RightButton, {50, 60}, {{53, 64}, {80, 100}}, Qt::ControlModifier);
    EXPECT_EQ(QPointF(region().powderX, region().powderY), QPointF(400, 360));
    EXPECT_EQ(region().innerRadius, 0);
    EXPECT_EQ(region().outerRadius, 50);
    double x = 0, y = 0;
    service().beamCentre(x, y);
    EXPECT_EQ(QPointF(x, y), QPointF(400, 360));

    // The same for a key that the table of held keys knows of.
    choose(StatisticsData::CentredCircle);
    PressedKeys::record(QKeyEvent(QEvent::KeyPress, Qt::Key_Control, Qt::ControlModifier));
    drag(Qt::RightButton, {150, 60}, {{150, 70}});
    EXPECT_EQ(region().powderX, 500);
    EXPECT_EQ(region().outerRadius, 10);
    PressedKeys::clear();
}

TEST_F(RegionGestures, WithoutBeamCentreAPowderRingIsNotDefined)
{
    ASSERT_TRUE(_view.openAnew(images::uniform(1000, 800, 5)));
    choose(StatisticsData::CentredCircle);
    drag(Qt::RightButton, {190, 100}, {{200, 100}});
    EXPECT_FALSE(region().centredCircleDefined());
    EXPECT_EQ(region().innerRadius, -1);
}

TEST_F(RegionGestures, TheCursorTellsWhatADragWillDo)
{
    struct Row {
        StatisticsData region;
        QPoint position;
        const char* icon;  // of an open hand where empty
        bool movesImage = false;
    };
    const StatisticsData line = regions::line(370, 330, 450, 330);
    const StatisticsData circle = regions::circle(400, 370, 40);
    const StatisticsData ring = regions::powder(450, 400, 30, 60);
    StatisticsData passive = box;  // the user has chosen another tool
    passive.roiActive = false;
    const char* const cross = ":icons/crosscursor.xpm";
    for (const Row& row :
         {Row{box, {60, 60}, ""}, Row{box, {20, 60}, ":icons/leftRightCursor.png"},
          Row{box, {60, 100}, ":icons/upDownCursor.png"}, Row{box, {100, 100}, corner},
          Row{box, {150, 150}, cross, true}, Row{line, {20, 30}, corner}, Row{line, {60, 30}, ""},
          Row{circle, {50, 50}, ""}, Row{circle, {70, 70}, ":icons/rotarrow.xpm"},
          Row{circle, {50, 110}, corner}, Row{ring, {100, 100}, ""}, Row{ring, {145, 100}, ""},
          Row{ring, {131, 100}, corner}, Row{ring, {120, 100}, cross, true},
          Row{passive, {60, 60}, cross, true}}) {
        show(row.region);
        mouse::hover(drawer(), row.position);
        if (*row.icon)
            EXPECT_TRUE(cursorIs(row.icon)) << row.icon << row.position.x();
        else
            EXPECT_EQ(drawer().cursor().shape(), Qt::OpenHandCursor) << row.position.x();
        EXPECT_EQ(drawer().moveImage(), row.movesImage) << row.icon << row.position.x();
    }
}

TEST_F(RegionGestures, ADragOfTheBodyMovesTheRegionByAnyButtonAndNotTheImage)
{
    for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        show(box);
        // The way leaves the region and the view: a drag keeps the role that it began with.
        drag(button, {60, 60}, {{90, 60}, {290, 190}, {310, 250}, {70, 55}});
        StatisticsData expected = box;
        expected.beginX += 10, expected.endX += 10, expected.circleX += 10;
        expected.beginY -= 5, expected.endY -= 5, expected.circleY -= 5;
        EXPECT_EQ(region(), expected);
        EXPECT_EQ(viewport(), atFirst);
    }
    // Slowly at the highest zoom, where a pixel of the image is 64 of the screen.
    show(regions::box(400, 350, 402, 352));
    look(399.5, 349.5, 6);
    std::vector<QPoint> way;
    for (int x = 61; x <= 60 + 2 * 64; ++x)
        way.emplace_back(x, 60);
    drag(Qt::LeftButton, {60, 60}, way);
    EXPECT_EQ(QRect(region().beginX, region().beginY, 2, 2), QRect(402, 350, 2, 2));
}

TEST_F(RegionGestures, ADragBesideTheRegionMovesTheImage)
{
    show(box);
    drag(Qt::LeftButton, {200, 150}, {{190, 140}, {60, 60}});
    EXPECT_EQ(region(), box);
    EXPECT_EQ(viewport(), ViewportData(490, 390, 0, 0, 0));
}

TEST_F(RegionGestures, ACornerMayBeDraggedOverTheOppositeOne)
{
    show(box);
    drag(Qt::LeftButton, {20, 30}, {{100, 90}, {180, 170}});
    EXPECT_EQ(region(), regions::box(530, 470, 450, 400));
    mouse::hover(drawer(), {180, 170});
    EXPECT_TRUE(cursorIs(corner));
}

TEST_F(RegionGestures, TheDiameterOfACircleTurns)
{
    show(regions::circle(400, 370, 40));
    drag(Qt::LeftButton, {70, 70}, {{70, 75}, {50, 120}});
    EXPECT_EQ(region(), regions::circle(400, 370, 40, std::atan2(50.0, 0.0)));
}

TEST_F(RegionGestures, TheCentreOfAPowderRingFollowsTheCursorAndKeepsOffTheBorder)
{
    show(regions::powder(450, 400, 10, 60));
    drag(Qt::LeftButton, {100, 100}, {{120, 90}, {296, 90}});
    EXPECT_EQ(QPointF(region().powderX, region().powderY), QPointF(470, 390));
    EXPECT_EQ(region().outerRadius, 60);
}

TEST_F(RegionGestures, TheMiddleButtonTurnsTheHeightMapOnly)
{
    drag(Qt::MiddleButton, {100, 100}, {{110, 104}});
    EXPECT_EQ(viewport(), atFirst);
    service().setPlottingMode(PlottingMode::ThreeDimensional);
    drag(Qt::MiddleButton, {100, 100}, {{110, 104}, {120, 101}});
    EXPECT_EQ(viewport(), ViewportData(350, 300, 0, 0.5F, 10.0F));
    drag(Qt::LeftButton, {100, 100}, {{90, 100}});
    EXPECT_EQ(viewport(), ViewportData(360, 300, 0, 0.5F, 10.0F)) << "the left button pans as ever";
    mouse::hover(drawer(), {100, 60});
    mouse::wheel(drawer(), {100, 60}, {0, 120});
    EXPECT_EQ(viewport(), ViewportData(410, 330, 1, 0.5F, 10.0F));
}

TEST_F(RegionGestures, TheWheelStepsOnceHoweverFarItTurns)
{
    mouse::hover(drawer(), {100, 60});
    const auto turn = [this](int delta, const ViewportData& expected, const char* what) {
        mouse::wheel(drawer(), {100, 60}, {0, delta});
        EXPECT_EQ(viewport(), expected) << what;
    };
    turn(1200, {400, 330, 1, 0, 0}, "many notches");
    turn(0, {400, 330, 1, 0, 0}, "the end of a touch turns nothing");
    turn(-1, atFirst, "a part of a notch");
    for (const auto& [power, delta] : {std::pair(6, 120), {-2, -120}}) {
        look(400, 330, power);
        turn(delta, {400, 330, power, 0, 0}, "no step beyond the range");
    }
}

TEST(RegionGesturesAnywhere, NothingBreaksWithoutImageWithOnePixelOrWithoutSize)
{
    for (const bool glsl : {true, false}) {
        DrawnImage view(QSize(120, 90), glsl);
        PeakData peaks;
        peaks.defined = true;
        peaks.numberOfPeaks = 100;
        peaks.highlightedPeaks = {-1, 0, 99, 5000};
        for (const QSize image : {QSize(), QSize(1, 1), QSize(7, 1000)}) {
            EXPECT_TRUE(image.isEmpty() || view.open(images::withGeometry(
                                               image.width(), image.height(), 5, 0.5F, 0.5F)));
            view.service->toggleShowResolutionRings(true);
            view.service->setPeakData(peaks);
            for (const QSize size : {QSize(120, 90), QSize(0, 0), QSize(1, 1)}) {
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
                for (const int power : {-2, 6}) {
                    for (int step = 0; step < 9; ++step)
                        view.drawer->zoom(power);
                    (void)view.drawer->grab();
                }
            }
        }
    }
}

}  // namespace
