// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Runs tests that need an event loop but no window, with settings of their own.
#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
