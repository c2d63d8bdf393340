// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindowEventControl.h"

#include "gui/kit/PressedKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

MainWindowEventControl::MainWindowEventControl(const QWidget& window)
    : _window(window)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool MainWindowEventControl::keyPressed(int key) { return PressedKeys::pressed(key); }

bool MainWindowEventControl::eventFilter(QObject* watched, QEvent* event)
{
    // The release of a key that is still down will not arrive here.
    if (watched == &_window && event->type() == QEvent::WindowDeactivate)
        PressedKeys::clear();
    const bool ofKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (ofKey && QApplication::activeWindow() == &_window)
        PressedKeys::record(static_cast<const QKeyEvent&>(*event));
    return false;
}
