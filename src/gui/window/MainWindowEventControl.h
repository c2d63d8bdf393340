// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a main window sees of all events of the program.
#pragma once

#include <QObject>

class QWidget;

/// Records which keys are held down while its main window is the active one. Thread: GUI only,
/// except keyPressed().
class MainWindowEventControl : public QObject {
    Q_OBJECT
public:
    /// Watches until it is destroyed.
    explicit MainWindowEventControl(const QWidget& window);

    /// True if a key is down. Thread: any.
    static bool keyPressed(int key);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const QWidget& _window;
};
