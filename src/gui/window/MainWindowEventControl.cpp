// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/MainWindowEventControl.h"

#include "gui/kit/PressedKeys.h"
#include "gui/window/SubWindow.h"
#include "gui/window/SubWindowEventControl.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <utility>

MainWindowEventControl::MainWindowEventControl(const QWidget& window,
                                               std::function<SubWindow*()> target)
    : _window(window)
    , _target(std::move(target))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool MainWindowEventControl::keyPressed(int key) { return PressedKeys::pressed(key); }

bool MainWindowEventControl::eventFilter(QObject* watched, QEvent* event)
{
    // Releases of what is still down will not arrive here.
    if (watched == &_window && event->type() == QEvent::WindowDeactivate) {
        PressedKeys::clear();
        if (SubWindow* view = _target())
            view->subWindowEventControl()->endDrag();
    }
    // Each event first goes to the native window, then to its widget.
    if (!watched->isWidgetType() || QApplication::activeWindow() != &_window)
        return false;
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return _key(static_cast<QKeyEvent&>(*event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Wheel:
        if (SubWindow* view = _target())
            return view->subWindowEventControl()->event(event);
        return false;
    default:
        return false;
    }
}

bool MainWindowEventControl::_key(QKeyEvent& event)
{
    if (event.key() == Qt::Key_Escape)
        return false;
    PressedKeys::record(event);
    SubWindow* view = _target();
    // Typing in a field stays typing.
    return view && view->imageHasFocus() && view->subWindowEventControl()->event(&event);
}
