// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The application object.
#pragma once

#include <QApplication>

class MainWindow;

/// Opens files that the desktop hands over, in views of their own. Thread: GUI only.
class MainApplication : public QApplication {
    Q_OBJECT
public:
    /// Sets the look and the names under which settings are stored.
    MainApplication(int& argc, char** argv);

    /// The window that such files are opened in; without one they are ignored.
    void setMainWindow(MainWindow* mainWindow) { _mainWindow = mainWindow; }
    bool event(QEvent* event) override;

private:
    MainWindow* _mainWindow = nullptr;
};
