// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The main function of tests that show windows: the program's look, and settings of their own.
#include "gui/kit/Look.h"
#include "logic/support/GlobalStyle.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdlib>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    look::beforeApplication();
    QCoreApplication::setOrganizationName(QStringLiteral("MORVEND"));
    QCoreApplication::setApplicationName(QStringLiteral("TARVIK"));
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    look::applyToApplication();
    QApplication::setFont(QFont(GLOBALSTYLE::fontFamily, 14));
    QApplication::setQuitOnLastWindowClosed(false);
    const int result = RUN_ALL_TESTS();
    settings.remove();
    // The application is not taken apart: it would unload the graphics driver, whose memory would
    // then look lost to a search for leaks.
    std::exit(result);
}
