// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notices that the files of a series change.
#pragma once

#include "logic/service/FolderWatch.h"

#include <QObject>
#include <QString>

/// Watches the folder of an image, where new files appear and frames are added to files. The
/// system's notification is quick, but none comes from network file systems or for the files of a
/// set in other folders: a slow poll notices what it misses. Thread: GUI only; no call waits for a
/// file.
class ContainerWatch : public QObject {
    Q_OBJECT
public:
    /// @param file  path of the image shown; empty for an image without file, where only the poll
    /// goes on
    /// @param pollPeriod  as for FolderWatch
    explicit ContainerWatch(const QString& file, int pollPeriod = FolderWatch::defaultPollPeriod);
    /// Switches to another file.
    void setFile(const QString& file);

signals:
    /// Something may have changed in the folder.
    void changedSignal(const QString& folder);
    /// The same from the thread of the watch.
    void _noticedSignal();

private:
    void _noticed();

    QString _folder;
    FolderWatch _watch;  // last: it calls the others
};
