// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Set-up of the application object and files from the desktop.
#include "bin/MainApplication.h"

#include "gui/kit/Look.h"
#include "gui/window/MainWindow.h"
#include "logic/support/GlobalStyle.h"

#include <QFileOpenEvent>

#include <clocale>

MainApplication::MainApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
    // Qt takes over the user's locale, but numbers in files have a point in every country.
    std::setlocale(LC_NUMERIC, "C");
    look::applyToApplication();
    setFont(QFont(GLOBALSTYLE::fontFamily, 14));
    setOrganizationName(QStringLiteral("MORVEND"));
    setOrganizationDomain(QStringLiteral("morvend.example"));
    setApplicationName(QStringLiteral("TARVIK"));
    setQuitOnLastWindowClosed(false);  // the main window decides
}

bool MainApplication::event(QEvent* event)
{
    if (event->type() != QEvent::FileOpen)
        return QApplication::event(event);
    if (_mainWindow)
        _mainWindow->openFiles({static_cast<QFileOpenEvent*>(event)->file()});
    return true;
}
