// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notification by the system, and a poll.
#include "logic/service/PathWatch.h"

#include "logic/service/ContainerWatch.h"

#include <QFileInfo>

void PathWatch::setFile(const QString& file)
{
    if (!_watcher) {
        // Made here, so that they live on the thread that calls.
        _watcher = new QFileSystemWatcher(this);
        _poll = new QTimer(this);
        connect(_watcher, &QFileSystemWatcher::directoryChanged, this, &PathWatch::_changed);
        connect(_watcher, &QFileSystemWatcher::fileChanged, this, &PathWatch::_changed);
        connect(_poll, &QTimer::timeout, this, &PathWatch::_changed);
        _poll->start(ContainerWatch::pollPeriod);
    } else if (file == _file) {
        return;
    }
    if (!_file.isEmpty())
        _watcher->removePath(_file);
    _file = file;
    const QString folder = file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
    const bool moves = folder != _folder;
    if (moves) {
        if (!_folder.isEmpty())
            _watcher->removePath(_folder);
        _folder = folder;
        _watch(_folder);
    }
    _watch(_file);
    if (moves)
        emit changedSignal(_folder);  // nobody has told what changed until now
}

void PathWatch::_watch(const QString& path)
{
    // A path that can't be watched is left to the poll.
    if (!path.isEmpty())
        _watcher->addPath(path);
}

void PathWatch::_changed()
{
    // A file that was replaced is not watched any more.
    if (!_file.isEmpty() && _watcher->files().isEmpty())
        _watch(_file);
    emit changedSignal(_folder);
}
