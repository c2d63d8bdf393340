// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notices that the files of a series change.
#pragma once

#include <QObject>
#include <QString>
#include <QThread>

#include <memory>

class PathWatch;

/// Watches the folder of an image, where new files appear, and the image's own file, which frames
/// may be added to. The system's notification is quick, but none comes from network file systems or
/// for the other files of a set: a slow poll notices what it misses. The watching goes on on a
/// thread of its own, since a mount that is dead lets nobody go who asks it to be watched.
/// Thread: GUI only; no call waits for a file.
class ContainerWatch : public QObject {
    Q_OBJECT
public:
    static constexpr int pollPeriod = 2000;  // ms

    /// @param file  absolute path of the image shown; empty for an image without file, where only
    /// the poll goes on
    explicit ContainerWatch(const QString& file);
    /// Leaves a thread that goes on waiting for its file system behind, after 200 ms.
    ~ContainerWatch() override;
    /// Goes over to another file.
    void setFile(const QString& file);

signals:
    /// Something may have changed in the folder.
    void changedSignal(const QString& folder);

private:
    std::unique_ptr<QThread> _thread;
    PathWatch* _watch;  // lives on the thread and goes with it
};
