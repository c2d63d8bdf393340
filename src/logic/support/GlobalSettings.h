// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The settings of the machine, which only an administrator can write.
#pragma once

#include <QSettings>

/// Settings of the machine, made for each use on the stack of the thread that uses it.
///
/// The file is "MORVEND/TARVIK.conf" in /Library/Preferences if that folder exists, else in
/// /etc/xdg. It holds one key, accessibleInUserMode.
class GlobalSettings : public QSettings {
    Q_OBJECT
public:
    /// bool, true when absent: users who can't write this file may drive the detector
    static const QString accessibleInUserMode;

    /// The file's fixed path.
    static QString machinePath();

    /// Opens the file and prints each key that it holds on standard output, one per line.
    GlobalSettings();
    /// The same with another file, for tests.
    explicit GlobalSettings(const QString& path);

    /// The value of accessibleInUserMode.
    bool usersMayDriveDetector() const;
};
