// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Events of the mouse for a view, at positions of its own.
#pragma once

#include <QApplication>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>

namespace mouse {

inline void send(QWidget& widget, QEvent::Type type, QPoint position, Qt::MouseButton button,
                 Qt::MouseButtons buttons, Qt::KeyboardModifiers keys = {})
{
    QMouseEvent event(type, position, widget.mapToGlobal(QPointF(position)), button, buttons, keys);
    QApplication::sendEvent(&widget, &event);
}

inline void hover(QWidget& widget, QPoint position)
{
    send(widget, QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
}

/// Hovers to the start, presses there, moves over all points and releases at the last one.
inline void drag(QWidget& widget, Qt::MouseButton button, QPoint start,
                 const std::vector<QPoint>& way, Qt::KeyboardModifiers keys = {})
{
    hover(widget, start);
    send(widget, QEvent::MouseButtonPress, start, button, button, keys);
    for (const QPoint& point : way)
        send(widget, QEvent::MouseMove, point, Qt::NoButton, button, keys);
    send(widget, QEvent::MouseButtonRelease, way.back(), button, Qt::NoButton, keys);
}

/// Waits first, since events that follow at once are dropped.
inline void wheel(QWidget& widget, QPoint position, QPoint delta, int pause = 25)
{
    QTest::qWait(pause);
    QWheelEvent event(position, widget.mapToGlobal(QPointF(position)), QPoint(), delta,
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

inline void enter(QWidget& widget, QPoint position)
{
    QEnterEvent event(position, position, widget.mapToGlobal(QPointF(position)));
    QApplication::sendEvent(&widget, &event);
}

}  // namespace mouse
