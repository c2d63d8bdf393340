// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the user does to an image with the mouse, and what the view makes of sizes.
#include "tests/gui/render/MouseEvents.h"
#include "tests/gui/render/SharedView.h"

#include <QElapsedTimer>

namespace {

class ImageDrawerTest : public SharedView<ImageDrawerMain> {
protected:
    ImageDrawerTest()
        : SharedView(QSize(300, 200))
    {}
    void SetUp() override
    {
        ASSERT_TRUE(_view.openAnew(images::patterned(1000, 800)));
        setGrey(100);
    }
};

TEST(EmptyImageDrawer, IsPlainAndGesturesDoNothing)
{
    const DrawnImage view(QSize(300, 200));
    ImageDrawerMain& drawer = *view.drawer;
    const QImage picture = drawer.grab();
    ASSERT_EQ(picture.size(), QSize(300, 200));
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::darkGray));
    EXPECT_EQ(picture.pixelColor(150, 100), QColor(Qt::darkGray));
    mouse::wheel(drawer, {10, 10}, {0, 120});
    mouse::drag(drawer, Qt::LeftButton, {10, 10}, {{50, 50}});
    EXPECT_EQ(view.service->viewportData(), ViewportData());
    EXPECT_EQ(drawer.visibleRange(), QRectF());
    EXPECT_EQ(drawer.windowToImage(), QRectF());
    EXPECT_TRUE(drawer.imageBoundary().isNull());
}

TEST_F(ImageDrawerTest, AResizeKeepsWhatIsInTheMiddle)
{
    const auto middle = [&] { return drawer().windowToImage().center(); };
    for (const auto& [x, y, power] :
         {std::tuple(333.0, 222.0, 0), {700.25, 10.5, 3}, {-40.0, 0.0, -2}}) {
        look(x, y, power);
        const QPointF centre = middle();
        drawer().resize(0, 0);
        settle();
        EXPECT_EQ(viewport(), ViewportData(x, y, power, 0, 0)) << "a passing size";
        for (const QSize size : {QSize(501, 303), QSize(1, 1), QSize(120, 400)}) {
            drawer().resize(size);
            EXPECT_EQ(middle(), centre) << "at once, " << size.width();
            settle();
            EXPECT_EQ(middle(), centre) << size.width();
            EXPECT_EQ(viewport().offsetX, drawer().windowToImage().x()) << "the record too";
        }
        drawer().resize(300, 200);
        settle();
        EXPECT_EQ(viewport(), ViewportData(x, y, power, 0, 0)) << "and all is as it was";
    }
}

/// Views of one group: equal ones keep their middle together; of unequal ones the first decides,
/// and there is an end to it.
TEST_F(ImageDrawerTest, ViewsOfAGroupAreResizedTogether)
{
    TarvikService* other = _view.core.newService("test");
    auto second = std::make_unique<ImageDrawerMain>(other, true);
    second->resize(300, 200);
    second->show();
    (void)QTest::qWaitForWindowExposed(second.get());
    other->openImage(service().image());
    ASSERT_TRUE(waitFor([&] { return other->imageLoaded(); }));
    settle();
    look(333, 222, 0);
    ASSERT_EQ(second->windowToImage(), drawer().windowToImage());
    QSignalSpy changes(&service(), &TarvikService::newViewportSignal);
    const QSize sizes[][2] = {
        {{400, 300}, {400, 300}}, {{500, 300}, {200, 300}}, {{300, 200}, {300, 200}}};
    for (const auto& [first, last] : sizes) {
        drawer().resize(first);
        second->resize(last);
        settle();
        EXPECT_EQ(drawer().windowToImage().center(), QPointF(333 + 150, 222 + 100));
        EXPECT_EQ(second->windowToImage().topLeft(), drawer().windowToImage().topLeft());
    }
    EXPECT_EQ(changes.count(), 3);
    second.reset();
    _view.core.deleteService(other);
}

TEST_F(ImageDrawerTest, WheelEventsThatFollowAtOnceAreDropped)
{
    QElapsedTimer clock;
    for (int turn = 1; !clock.isValid() || clock.elapsed() > 15; turn = -turn) {
        // Again, where the machine was too slow for two events in a row.
        mouse::wheel(drawer(), {10, 10}, {0, 120 * turn});
        const int zoomPower = viewport().zoomPower;
        clock.start();
        mouse::wheel(drawer(), {10, 10}, {0, 120 * turn}, 0);
        EXPECT_TRUE(clock.elapsed() > 15 || viewport().zoomPower == zoomPower);
    }
}

TEST_F(ImageDrawerTest, AZoomByKeyKeepsTheCentre)
{
    const QPointF centre(drawer().imgX(150), drawer().imgY(100));
    drawer().zoom(7);
    EXPECT_EQ(viewport().zoomPower, 1);
    EXPECT_EQ(QPointF(drawer().imgX(150), drawer().imgY(100)), centre);
    drawer().zoom(-1);
    EXPECT_EQ(viewport().zoomPower, 0);
}

TEST_F(ImageDrawerTest, ADragMovesTheImageWithTheCursor)
{
    const ViewportData before = viewport();
    const ViewportData moved(before.offsetX - 30, before.offsetY + 20, 0, 0, 0);
    const QImage picture = drawer().grab();
    mouse::drag(drawer(), Qt::LeftButton, {100, 100}, {{110, 95}, {130, 80}});
    EXPECT_EQ(viewport(), moved);
    _view.hideCursor();
    EXPECT_EQ(drawer().grab().copy(30, 0, 270, 180), picture.copy(0, 20, 270, 180));
    mouse::hover(drawer(), {10, 10});
    EXPECT_EQ(viewport(), moved) << "a move without button drags nothing";
    drawer().setMoveImage(false);
    mouse::send(drawer(), QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton, Qt::LeftButton);
    mouse::send(drawer(), QEvent::MouseMove, {130, 80}, Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(viewport(), moved);
    mouse::send(drawer(), QEvent::MouseButtonRelease, {130, 80}, Qt::LeftButton, Qt::NoButton);
}

TEST_F(ImageDrawerTest, TheCursorIsToldInImagePixelsUntilItLeaves)
{
    QSignalSpy cursor(&drawer(), &ImageDrawer::newCursorCoordinates);
    const auto last = [&] {
        return QPointF(cursor.last()[0].toDouble(), cursor.last()[1].toDouble());
    };
    mouse::hover(drawer(), {20, 30});
    ASSERT_GE(cursor.count(), 1);
    EXPECT_EQ(last(), QPointF(350 + 20, 300 + 30));
    mouse::enter(drawer(), {20, 30});
    drawer().resize(400, 300);
    EXPECT_EQ(last(), QPointF(300 + 20, 250 + 30)) << "it stands still over another pixel";
    drawer().zoom(1);
    EXPECT_EQ(last(), QPointF(drawer().imgX(20), drawer().imgY(30)));
    drawer().zoom(-1);
    drawer().resize(300, 200);
    settle();
    _view.hideCursor();
    EXPECT_EQ(last(), QPointF(-1, -1));
}

}  // namespace
