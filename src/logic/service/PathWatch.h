// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The part of a watch that touches the file system.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

/// Watches the folder of an image, where new files appear, and the image's own file, which frames
/// may be added to, and polls beside that. Any of its calls may wait for a file system that does
/// not answer. Thread: the one it lives on.
class PathWatch : public QObject {
    Q_OBJECT
public:
    /// Goes over to another file; none where the path is empty.
    void setFile(const QString& file);

signals:
    /// Something may have changed in the folder.
    void changedSignal(const QString& folder);

private:
    void _watch(const QString& path);
    void _changed();

    QString _file;
    QString _folder;
    QFileSystemWatcher* _watcher = nullptr;
    QTimer* _poll = nullptr;
};
