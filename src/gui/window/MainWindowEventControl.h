// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a main window sees of all events of the program.
#pragma once

#include <QObject>

#include <functional>

class QKeyEvent;
class QWidget;
class SubWindow;

/// Records which keys are held down while its main window is the active one, and diverts keys and
/// mouse to a view in the keyboard shortcut mode. Thread: GUI only, except keyPressed().
class MainWindowEventControl : public QObject {
    Q_OBJECT
public:
    /// Watches until it is destroyed.
    /// @param target  the view whose gestures get the events first; null if there isn't one now
    MainWindowEventControl(const QWidget& window, std::function<SubWindow*()> target);

    /// True if a key is down. Thread: any.
    static bool keyPressed(int key);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool _key(QKeyEvent& event);

    const QWidget& _window;
    const std::function<SubWindow*()> _target;
};
