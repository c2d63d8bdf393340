// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notices that the files of a series change.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

/// Watches the folder of an image, where new files appear, and the image's own file, which frames
/// may be added to. The system's notification is quick, but none comes from network file systems or
/// for the other files of a set: a slow poll notices what it misses. Thread: GUI only.
class ContainerWatch : public QObject {
    Q_OBJECT
public:
    static constexpr int pollPeriod = 2000;  // ms

    /// @param file  absolute path of the image shown; empty for an image without file, where only
    /// the poll goes on
    explicit ContainerWatch(const QString& file);
    /// Goes over to another file.
    void setFile(const QString& file);

signals:
    /// Something may have changed in the folder.
    void changedSignal(const QString& folder);

private:
    void _watch(const QString& path);
    void _changed();

    QString _file;
    QString _folder;
    QFileSystemWatcher _watcher;
    QTimer _poll;
};
