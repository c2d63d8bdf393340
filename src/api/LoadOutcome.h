// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Why the last image of a view could not be loaded.
#pragma once

#include <QObject>
#include <QString>

class SubWindow;

/// Lives in a view, since a script may ask after the failure has been signalled. Thread: GUI.
class LoadOutcome : public QObject {
    Q_OBJECT
public:
    /// Follows a view from now on.
    static void follow(SubWindow& view);
    /// What the last load failed with; null if it didn't, or none has ended.
    static QString failure(const SubWindow& view);

private:
    explicit LoadOutcome(SubWindow& view);

    QString _failure;
};
