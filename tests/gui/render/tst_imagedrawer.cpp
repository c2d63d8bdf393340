// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the user does to an image with the mouse, and what the view makes of sizes and windows.
#include "tests/gui/render/DrawnImage.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QSplitter>
#include <QWheelEvent>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

/// Pixels that differ from all their neighbours.
MImage checkered(int width, int height)
{
    MImage image(width, height, 0);
    auto* pixels = static_cast<int*>(image.data());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)] = (x * 7 + y * 13) % 101;
    }
    image.optionalData().set_pixel_mask(MImage(width, height, 0U));
    return image;
}

void wheel(QWidget& widget, QPoint position, int delta)
{
    QTest::qWait(25);  // closer events are dropped
    QWheelEvent event(position, widget.mapToGlobal(position), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

class ImageDrawerTest : public testing::Test {
protected:
    ImageDrawerTest()
        : _view(QSize(300, 200))
    {}

    void open(int width, int height)
    {
        ASSERT_TRUE(_view.open(checkered(width, height)));
        _view.service->setContrastData({100, 0, MColorTable::grey(), false});
    }

    ImageDrawerMain& drawer() { return *_view.drawer; }
    ViewportData viewport() const { return _view.service->viewportData(); }

    DrawnImage _view;
};

TEST_F(ImageDrawerTest, WithoutImageTheViewIsEmptyAndGesturesDoNothing)
{
    const QImage picture = drawer().grab();
    ASSERT_EQ(picture.size(), QSize(300, 200));
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::darkGray));
    EXPECT_EQ(picture.pixelColor(150, 100), QColor(Qt::darkGray));
    wheel(drawer(), QPoint(10, 10), 120);
    QTest::mousePress(&drawer(), Qt::LeftButton, {}, QPoint(10, 10));
    QTest::mouseMove(&drawer(), QPoint(50, 50));
    QTest::mouseRelease(&drawer(), Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_EQ(viewport(), ViewportData());
    EXPECT_EQ(drawer().visibleRange(), QRectF());
    EXPECT_EQ(drawer().windowToImage(), QRectF());
    EXPECT_TRUE(drawer().imageBoundary().isNull());
}

TEST_F(ImageDrawerTest, AFirstImageIsCentredWithTheDefaultContrast)
{
    ASSERT_TRUE(_view.open(checkered(100, 80)));
    EXPECT_EQ(viewport(), ViewportData(-100, -60, 0, 0, 0));
    EXPECT_EQ(drawer().imageBoundary(), QRect(100, 60, 100, 80));
    const ContrastData contrast = _view.service->contrastData();
    EXPECT_TRUE(contrast.defined);
    EXPECT_FALSE(contrast.dragUpdate);
    EXPECT_EQ(contrast.colorTable, MColorTable::hdr());
    EXPECT_EQ(contrast.foreground, std::trunc(_view.service->statistics()->foreground));
    const QImage picture = drawer().grab();
    EXPECT_EQ(picture.pixelColor(99, 100), QColor(Qt::darkGray));
    EXPECT_EQ(picture.pixelColor(200, 100), QColor(Qt::darkGray));
    EXPECT_NE(picture.pixelColor(150, 100), QColor(Qt::darkGray));
}

TEST_F(ImageDrawerTest, TheWheelKeepsThePixelUnderTheCursor)
{
    open(1000, 800);
    const QPoint cursor(213, 47);
    QTest::mouseMove(&drawer(), cursor);
    const double x = drawer().imgX();
    const double y = drawer().imgY();
    const QRgb color = drawer().grab().pixel(cursor);
    for (const int delta : {120, 120, 120, 120, 120, 120, 120}) {
        wheel(drawer(), cursor, delta);
        EXPECT_DOUBLE_EQ(drawer().imgX(), x);
        EXPECT_DOUBLE_EQ(drawer().imgY(), y);
        EXPECT_EQ(drawer().grab().pixel(cursor), color) << viewport().zoomPower;
    }
    EXPECT_EQ(viewport().zoomPower, 6) << "seven steps in end at the highest zoom";
    for (int step = 0; step < 9; ++step)
        wheel(drawer(), cursor, -120);
    EXPECT_EQ(viewport().zoomPower, -2);
    EXPECT_DOUBLE_EQ(drawer().imgX(), x);
}

TEST_F(ImageDrawerTest, WheelEventsThatFollowAtOnceAreDropped)
{
    open(1000, 800);
    wheel(drawer(), QPoint(10, 10), 120);
    QWheelEvent event(QPointF(10, 10), QPointF(10, 10), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QElapsedTimer clock;
    clock.start();
    QApplication::sendEvent(&drawer(), &event);
    if (clock.elapsed() > 15)
        GTEST_SKIP() << "the machine was too slow for two events in a row";
    EXPECT_EQ(viewport().zoomPower, 1);
}

TEST_F(ImageDrawerTest, AZoomByKeyKeepsTheCentre)
{
    open(1000, 800);
    const double x = drawer().imgX(150);
    const double y = drawer().imgY(100);
    drawer().zoom(7);
    EXPECT_EQ(viewport().zoomPower, 1);
    EXPECT_DOUBLE_EQ(drawer().imgX(150), x);
    EXPECT_DOUBLE_EQ(drawer().imgY(100), y);
    drawer().zoom(-1);
    EXPECT_EQ(viewport().zoomPower, 0);
}

TEST_F(ImageDrawerTest, ADragMovesTheImageWithTheCursor)
{
    open(1000, 800);
    const ViewportData before = viewport();
    const QImage picture = drawer().grab();
    QTest::mousePress(&drawer(), Qt::LeftButton, {}, QPoint(100, 100));
    QTest::mouseMove(&drawer(), QPoint(110, 95));
    QTest::mouseMove(&drawer(), QPoint(130, 80));
    QTest::mouseRelease(&drawer(), Qt::LeftButton, {}, QPoint(130, 80));
    EXPECT_EQ(viewport().offsetX, before.offsetX - 30);
    EXPECT_EQ(viewport().offsetY, before.offsetY + 20);
    _view.hideCursor();
    EXPECT_EQ(drawer().grab().copy(30, 0, 270, 180), picture.copy(0, 20, 270, 180));

    QTest::mouseMove(&drawer(), QPoint(10, 10));
    EXPECT_EQ(viewport().offsetX, before.offsetX - 30) << "a move without button drags nothing";
    drawer().setMoveImage(false);
    QTest::mousePress(&drawer(), Qt::LeftButton, {}, QPoint(100, 100));
    QTest::mouseMove(&drawer(), QPoint(130, 80));
    QTest::mouseRelease(&drawer(), Qt::LeftButton, {}, QPoint(130, 80));
    EXPECT_EQ(viewport().offsetX, before.offsetX - 30);
}

TEST_F(ImageDrawerTest, TheCursorIsToldInImagePixelsUntilItLeaves)
{
    open(1000, 800);
    QSignalSpy cursor(&drawer(), &ImageDrawer::newCursorCoordinates);
    QTest::mouseMove(&drawer(), QPoint(20, 30));
    ASSERT_GE(cursor.count(), 1);
    EXPECT_EQ(cursor.last()[0].toDouble(), 350 + 20);
    EXPECT_EQ(cursor.last()[1].toDouble(), 300 + 30);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&drawer(), &leave);
    EXPECT_EQ(cursor.last()[0].toDouble(), -1);
    EXPECT_EQ(cursor.last()[1].toDouble(), -1);
}

TEST_F(ImageDrawerTest, APictureOfTheHeightMapIsOpaque)
{
    open(1000, 800);
    drawer().setPlottingMode(PlottingMode::ThreeDimensional);
    _view.service->setViewportData(ViewportData(350, 300, 0, 30, 20));
    const QImage picture = drawer().grab();
    int lit = 0;
    int clear = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            lit += picture.pixelColor(x, y) != QColor(Qt::black);
            clear += qAlpha(picture.pixel(x, y)) != 255;
        }
    }
    EXPECT_GT(lit, 1000);
    EXPECT_EQ(clear, 0);
}

TEST_F(ImageDrawerTest, AnotherSizeOfImageOrWindowIsShownRight)
{
    open(1000, 800);
    ASSERT_TRUE(_view.open(checkered(64, 32)));
    EXPECT_EQ(drawer().imageBoundary().size(), QSize(64, 32));
    drawer().resize(500, 300);
    settle();
    const QImage picture = drawer().grab();
    EXPECT_EQ(picture.size(), QSize(500, 300));
    EXPECT_NE(picture.pixelColor(drawer().imageBoundary().center()), QColor(Qt::darkGray));
}

TEST_F(ImageDrawerTest, TheImageSurvivesAMoveBetweenSplittersAndWindows)
{
    open(1000, 800);
    const QImage before = drawer().grab();
    QSplitter first;
    QSplitter second;
    for (QSplitter* splitter : {&first, &second}) {
        splitter->resize(300, 200);
        splitter->show();
        splitter->addWidget(&drawer());
        drawer().show();
        (void)QTest::qWaitForWindowExposed(splitter);
        settle();
        _view.hideCursor();
        EXPECT_EQ(drawer().grab(), before);
    }
    drawer().setParent(nullptr);
}

TEST_F(ImageDrawerTest, WhatStandsOnTheScreenIsThePictureThatIsGrabbed)
{
    open(1000, 800);
    const auto shown = [this] {
        return waitFor([this] {
            return _view.screen() == drawer().grab().convertToFormat(QImage::Format_RGB32);
        });
    };
    EXPECT_TRUE(shown());
    const QImage before = _view.screen();
    _view.service->setContrastData({30, 0, MColorTable::heat(), false});
    EXPECT_TRUE(shown());
    EXPECT_NE(_view.screen(), before);
    drawer().zoom(1);
    drawer().repaint();
    EXPECT_TRUE(shown());
}

}  // namespace
