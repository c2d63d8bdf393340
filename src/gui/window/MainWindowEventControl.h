// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a main window learns of all events of the program.
#pragma once

#include <QObject>

class QWidget;

/// Records which keys are held down while its main window is the active one. Thread: GUI only,
/// apart from keyPressed().
class MainWindowEventControl : public QObject {
    Q_OBJECT
public:
    /// Watches from now on until its end.
    explicit MainWindowEventControl(const QWidget& window);

    /// Is a key down? Thread: any.
    static bool keyPressed(int key);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const QWidget& _window;
};
