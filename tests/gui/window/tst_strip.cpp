// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A view's series strip goes through the series of files.
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/MainWindow.h"
#include "gui/window/SubWindow.h"
#include "gui/window/SubWindowStrip.h"
#include "logic/core/TarvikCore.h"
#include "logic/service/TarvikService.h"
#include "tests/support/EdfFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QSignalSpy>
#include <QWheelEvent>

#include <fstream>

namespace {

class StripTest : public testing::Test {
protected:
    StripTest()
    {
        // Images 1 to 12; 5 and 6 are missing, 9 is no image.
        for (int i = 1; i <= 12; ++i)
            if (i != 5 && i != 6 && i != 9)
                tarvik::tests::writeEdf(_folder, name(i), 8, std::vector(32, i));
        std::ofstream(_folder / name(9)) << "nonsense";
        _core.setDefaultColorTable("High Dynamic Range");
        _window = std::make_unique<MainWindow>(_core, true, true);
        _window->resize(500, 300);
        _window->show();
        _view = _window->newSubWindow();
        _view->loadFile(QString::fromStdString(_folder / name(1)));
        EXPECT_TRUE(shows(1));
        settle();
        _strip = _view->findChild<SeriesStrip*>();
    }
    static std::string name(int number) { return "x_" + std::to_string(1000 + number) + ".edf"; }
    /// The middle of a number's columns; files are numbered from 1001.
    QPoint place(int number) const
    {
        return _strip->columns({1000 + number, 1000 + number}).center();
    }
    bool shows(int number) const
    {
        return waitFor([&] {
            return _view->service()->imageIndex() == 1000 + number && !_view->service()->loading();
        });
    }

    tarvik::tests::TempFolder _folder;
    TarvikCore _core;
    std::unique_ptr<MainWindow> _window;
    SubWindow* _view = nullptr;
    SeriesStrip* _strip = nullptr;
};

TEST_F(StripTest, APressOnWhatCanNotBeShownGoesOnToWhatCan)
{
    const QSignalSpy errors(_view->service(), &TarvikService::imageLoadErrorSignal);
    const QSignalSpy notices(_view->service(), &TarvikService::noticeSignal);
    EXPECT_EQ(_strip->count(), 12);
    EXPECT_TRUE(_strip->textOf(1005).endsWith("is missing"));
    for (const auto& [pressed, shown] : std::initializer_list<std::pair<int, int>>{
             {5, 7}, {12, 12}, {9, 8}, {6, 4}, {9, 10}, {1, 1}}) {
        SCOPED_TRACE(pressed);
        QTest::mouseClick(_strip, Qt::LeftButton, {}, place(pressed));
        EXPECT_TRUE(shows(shown));
        EXPECT_EQ(_strip->position(), 1000 + shown);
    }
    EXPECT_TRUE(waitFor([&] { return notices.count() == 4; })) << "what was left out";
    EXPECT_EQ(errors.count(), 0);
    EXPECT_TRUE(_strip->textOf(1009).contains("x_1009.edf")) << "the reason stays with its image";
}

TEST_F(StripTest, ADragEndsAtTheHandAndTheWheelSteps)
{
    QTest::mousePress(_strip, Qt::LeftButton, {}, place(2));
    for (const int number : {3, 4, 7, 8, 10, 11, 12, 11, 8, 7}) {
        const QPoint at = place(number);
        QMouseEvent move(QEvent::MouseMove, at, _strip->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(_strip, &move);
    }
    QTest::mouseRelease(_strip, Qt::LeftButton, {}, place(7));
    EXPECT_TRUE(shows(7));
    QWheelEvent wheel(QPointF(5, 5), _strip->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(_strip, &wheel);
    EXPECT_TRUE(shows(8));
}

TEST_F(StripTest, ComesBeforeTheImageOfItsViewSoThatViewsOfTheSameSizeStayTogether)
{
    _core.synchronizeViewportSlot(true);
    const SubWindow* const first = _view;
    _view = _window->newSubWindow();
    settle();
    const ViewportData before = first->service()->viewportData();
    _view->loadFile(QString::fromStdString(_folder / name(1)));
    EXPECT_TRUE(shows(1));
    settle();
    EXPECT_EQ(_view->imageDrawer()->size(), first->imageDrawer()->size());
    EXPECT_EQ(first->service()->viewportData(), before);
    EXPECT_EQ(first->imageDrawer()->imageBoundary(), _view->imageDrawer()->imageBoundary());
}

TEST_F(StripTest, GoesWithTheToolButtonsAndComesForSeriesOnly)
{
    EXPECT_TRUE(_strip->isVisible());
    _view->hideToolButtons();
    EXPECT_FALSE(_strip->isVisible());
    _view->showToolButtons();
    EXPECT_TRUE(_strip->isVisible());
    tarvik::tests::writeEdf(_folder, "alone.edf", 8, std::vector(32, 1));
    _view->loadFile(QString::fromStdString(_folder / "alone.edf"));
    EXPECT_TRUE(waitFor([&] { return !_strip->isVisible(); }));
    _view->showToolButtons();
    EXPECT_FALSE(_strip->isVisible());
}

}  // namespace
