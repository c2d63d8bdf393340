// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keys and drags of the keyboard shortcut mode, as a user makes them.
#include "gui/window/LaterSettings.h"
#include "imagelib/display/MColorTable.h"
#include "tests/gui/window/MainWindowTest.h"

#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>

#include <cmath>

namespace {

class ShortcutModeTest : public MainWindowTest {
protected:
    ShortcutModeTest()
    {
        _window->disableKeyboardShortcuts();
        _view = opened(5);
    }

    QAction* keys() const { return find<QAction>(_window.get(), "Keys"); }
    TarvikService& service() const { return *_view->service(); }
    QWidget* image() const { return _view->imageDrawer(); }
    void setContrast(double foreground, double background)
    {
        _view->setContrast(foreground, background);
    }
    /// Drags with a held key. @returns foreground and background afterwards
    QPair<double, double> drag(Qt::Key key, int pixels)
    {
        QTest::keyPress(_view, key);
        QTest::mousePress(image(), Qt::LeftButton, {}, {50, 50});
        QMouseEvent move(QEvent::MouseMove, QPointF(50 + pixels, 50),
                         image()->mapToGlobal(QPointF(50 + pixels, 50)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(image(), &move);
        EXPECT_TRUE(service().contrastData().dragUpdate || pixels == 0);
        QTest::mouseRelease(image(), Qt::LeftButton, {}, {50 + pixels, 50});
        QTest::keyRelease(_view, key);
        EXPECT_FALSE(service().contrastData().dragUpdate) << "a full pass follows";
        const ContrastData contrast = service().contrastData();
        return {contrast.foreground, contrast.background};
    }

    SubWindow* _view = nullptr;
};

TEST_F(ShortcutModeTest, EscSwitchesTheModeAndItIsRemembered)
{
    EXPECT_FALSE(_window->keyboardShortcutMode());
    QTest::keyClick(_view, Qt::Key_Escape);
    EXPECT_TRUE(_window->keyboardShortcutMode() && keys()->isChecked());
    const MainWindow next(_core, true, true);
    EXPECT_TRUE(next.keyboardShortcutMode());
    _window->disableKeyboardShortcuts();
    EXPECT_FALSE(_window->keyboardShortcutMode());
    later_settings::finish();
    EXPECT_FALSE(QSettings().value("KeyboardShortcutMode").toBool());
}

TEST_F(ShortcutModeTest, KeysStepAndZoomUnlessTheyAreTyped)
{
    QTest::keyClick(_view, Qt::Key_N);
    settle();
    EXPECT_FALSE(service().loading()) << "the mode is off";
    _window->enableKeyboardShortcuts();
    const int zoom = service().viewportData().zoomPower;
    QTest::keyClick(_view, Qt::Key_N);
    EXPECT_TRUE(waitForImage(_view, 6));
    QTest::keyClick(_view, Qt::Key_P);
    EXPECT_TRUE(waitForImage(_view, 5));
    QTest::keyClick(_view, Qt::Key_Minus);
    EXPECT_EQ(service().viewportData().zoomPower, zoom - 1);
    QTest::keyClick(_view, Qt::Key_Plus);
    EXPECT_EQ(service().viewportData().zoomPower, zoom);
    QTest::keyClick(_view, Qt::Key_Equal);
    EXPECT_EQ(service().viewportData().zoomPower, zoom + 1) << "the key of + without Shift";
    QTest::keyClick(_view, Qt::Key_Equal, Qt::ShiftModifier);
    EXPECT_EQ(service().viewportData().zoomPower, zoom + 1);
    QTest::keyClick(_view, Qt::Key_Minus);
    QTest::keyClick(_view, Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(_window->subWindows().size(), 2) << "with Control it is another shortcut";
    _window->activeSubWindow()->close();
    settle();

    auto* field = new QLineEdit(_window.get());
    field->show();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_N);
    EXPECT_EQ(field->text(), "n");
    EXPECT_FALSE(service().loading());
}

TEST_F(ShortcutModeTest, AHeldKeyStepsWithEachRepeat)
{
    _window->enableKeyboardShortcuts();
    _view->goTo(1);
    ASSERT_TRUE(waitForImage(_view, 1));
    QTest::keyPress(_view, Qt::Key_N);
    for (int i = 0; i < 6; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_N, Qt::NoModifier, "n", true);
        QApplication::sendEvent(_view, &repeat);
    }
    QTest::keyRelease(_view, Qt::Key_N);
    EXPECT_TRUE(waitForImage(_view, 8));
}

TEST_F(ShortcutModeTest, DragsWithAKeyMoveOneEndOfTheContrast)
{
    _window->enableKeyboardShortcuts();
    const auto moved = [](double from, int pixels) {
        return std::sinh(std::asinh(from) + 0.02 * pixels);
    };
    setContrast(100, 5);
    auto [front, back] = drag(Qt::Key_F, 50);
    EXPECT_DOUBLE_EQ(front, moved(100, 50));
    EXPECT_EQ(back, 5);
    front = drag(Qt::Key_F, -2000).first;
    EXPECT_EQ(front, 5.001) << "never below the background";
    setContrast(1e300, 5);
    EXPECT_DOUBLE_EQ(drag(Qt::Key_F, 50).first, std::sinh(44.0));

    // All pixels of the image are 5, which is where the background ends.
    setContrast(100, 20);
    EXPECT_EQ(drag(Qt::Key_B, 50).second, std::trunc(moved(20, 50)));
    setContrast(100, 20);
    EXPECT_EQ(drag(Qt::Key_B, -2000).second, 5);
    setContrast(100, 20);
    EXPECT_DOUBLE_EQ(drag(Qt::Key_B, 2000).second, 99.999);
}

TEST_F(ShortcutModeTest, OtherDragsAreTheImagesAndAnInterruptedOneEnds)
{
    _window->enableKeyboardShortcuts();
    setContrast(100, 5);
    QSignalSpy changes(&service(), &TarvikService::newContrastSignal);
    drag(Qt::Key_X, 0);
    EXPECT_EQ(changes.count(), 0);
    QTest::keyPress(_view, Qt::Key_F);
    QTest::mousePress(image(), Qt::LeftButton, {}, {50, 50});
    QMouseEvent move(QEvent::MouseMove, QPointF(90, 50), image()->mapToGlobal(QPointF(90, 50)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(image(), &move);
    EXPECT_TRUE(service().contrastData().dragUpdate);
    QTest::keyClick(_view, Qt::Key_Escape);
    EXPECT_FALSE(service().contrastData().dragUpdate) << "no release will come through";
    QTest::mouseRelease(image(), Qt::LeftButton);
    QTest::keyRelease(_view, Qt::Key_F);
}

}  // namespace
