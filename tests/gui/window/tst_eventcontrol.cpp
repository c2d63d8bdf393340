// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which keys a main window knows to be held down.
#include "gui/window/MainWindowEventControl.h"

#include "gui/window/MainWindow.h"
#include "logic/core/TarvikCore.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>

namespace {

void key(QWidget& widget, QEvent::Type type, int code, bool repeated = false)
{
    QKeyEvent event(type, code, Qt::NoModifier, QString(), repeated);
    QApplication::sendEvent(&widget, &event);
}

TEST(MainWindowEventControl, KnowsTheKeysThatAreDownWhileItsWindowIsActive)
{
    TarvikCore core;
    MainWindow window(core, true, false);
    window.show();
    (void)QTest::qWaitForWindowExposed(&window, Patience);
    QApplication::setActiveWindow(&window);
    const auto pressed = [] { return MainWindowEventControl::keyPressed(Qt::Key_F); };
    EXPECT_FALSE(pressed());
    key(window, QEvent::KeyPress, Qt::Key_F);
    EXPECT_TRUE(pressed());
    EXPECT_FALSE(MainWindowEventControl::keyPressed(Qt::Key_B));
    key(window, QEvent::KeyRelease, Qt::Key_F, true);
    EXPECT_TRUE(pressed()) << "a key that repeats itself stays down";
    key(window, QEvent::KeyRelease, Qt::Key_F);
    EXPECT_FALSE(pressed());
    key(window, QEvent::KeyPress, Qt::Key_Escape);
    EXPECT_FALSE(MainWindowEventControl::keyPressed(Qt::Key_Escape));

    key(window, QEvent::KeyPress, Qt::Key_F);
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    EXPECT_FALSE(pressed()) << "its release would go to the other window";
    key(other, QEvent::KeyPress, Qt::Key_F);
    EXPECT_FALSE(pressed());
}

}  // namespace
