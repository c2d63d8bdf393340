// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a main window learns of all events of the program.
#include "gui/window/MainWindowEventControl.h"

#include "gui/kit/PressedKeys.h"
#include "gui/mainwindow.h"

#include <QApplication>
#include <QKeyEvent>

MainWindowEventControl::MainWindowEventControl(MainWindow& window)
    : _window(window)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool MainWindowEventControl::keyPressed(int key) { return PressedKeys::pressed(key); }

bool MainWindowEventControl::eventFilter(QObject* watched, QEvent* event)
{
    // Nobody here will hear of the release of a key that is still down.
    if (watched == &_window && event->type() == QEvent::WindowDeactivate)
        PressedKeys::clear();
    const bool ofKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (ofKey && QApplication::activeWindow() == &_window)
        PressedKeys::record(static_cast<const QKeyEvent&>(*event));
    return false;
}
