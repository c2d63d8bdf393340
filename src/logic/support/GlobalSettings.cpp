// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where the machine's settings are and how they are opened.
#include "logic/support/GlobalSettings.h"

#include "logic/support/Console.h"

#include <QDir>

const QString GlobalSettings::accessibleInUserMode = QStringLiteral("HalvoAccessibleInUserMode");

QString GlobalSettings::machinePath()
{
    const QString preferences = QStringLiteral("/Library/Preferences");
    if (QDir(preferences).exists())
        return preferences + QStringLiteral("/MORVEND/TARVIK");
    return QStringLiteral("/etc/xdg/MORVEND/TARVIK.conf");
}

GlobalSettings::GlobalSettings()
    : GlobalSettings(machinePath())
{}

GlobalSettings::GlobalSettings(const QString& path)
    : QSettings(path, QSettings::NativeFormat)
{
    setFallbacksEnabled(false);
    const QStringList keys = allKeys();
    for (const QString& key : keys)
        console::print(key.toStdString() + '\n');
}

bool GlobalSettings::usersMayDriveDetector() const
{
    return !contains(accessibleInUserMode) || value(accessibleInUserMode).toBool();
}
