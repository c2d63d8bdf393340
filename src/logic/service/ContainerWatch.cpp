// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the thread of a watch to the view.
#include "logic/service/ContainerWatch.h"

#include <QFile>
#include <QFileInfo>

ContainerWatch::ContainerWatch(const QString& file, int pollPeriod)
    : _watch([this] { emit _noticedSignal(); }, pollPeriod)
{
    connect(this, &ContainerWatch::_noticedSignal, this, &ContainerWatch::_noticed,
            Qt::QueuedConnection);
    setFile(file);
}

void ContainerWatch::_noticed()
{
    _watch.lookAgain();
    emit changedSignal(_folder);
}

void ContainerWatch::setFile(const QString& file)
{
    const QString folder = file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
    if (folder == _folder)
        return;
    _folder = folder;
    _watch.setFolder(QFile::encodeName(folder).toStdString());
}
