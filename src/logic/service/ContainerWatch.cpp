// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Notification by the system, and a poll.
#include "logic/service/ContainerWatch.h"

#include <QFileInfo>

ContainerWatch::ContainerWatch(const QString& file)
{
    connect(&_watcher, &QFileSystemWatcher::directoryChanged, this, &ContainerWatch::_changed);
    connect(&_watcher, &QFileSystemWatcher::fileChanged, this, &ContainerWatch::_changed);
    connect(&_poll, &QTimer::timeout, this, &ContainerWatch::_changed);
    _poll.start(pollPeriod);
    setFile(file);
}

void ContainerWatch::setFile(const QString& file)
{
    if (file == _file)
        return;
    if (!_file.isEmpty())
        _watcher.removePath(_file);
    _file = file;
    const QString folder = file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
    if (folder != _folder) {
        if (!_folder.isEmpty())
            _watcher.removePath(_folder);
        _folder = folder;
        _watch(_folder);
    }
    _watch(_file);
}

void ContainerWatch::_watch(const QString& path)
{
    // A path that can't be watched is left to the poll.
    if (!path.isEmpty())
        _watcher.addPath(path);
}

void ContainerWatch::_changed()
{
    // A file that was replaced is not watched any more.
    if (!_file.isEmpty() && _watcher.files().isEmpty())
        _watch(_file);
    emit changedSignal(_folder);
}
