// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The thread of a watch.
#include "logic/service/ContainerWatch.h"

#include "logic/service/PathWatch.h"

namespace {

/// The thread has nothing to do but to leave its event loop.
constexpr unsigned long longestWait = 200;  // ms

}  // namespace

ContainerWatch::ContainerWatch(const QString& file)
    : _thread(std::make_unique<QThread>())
    , _watch(new PathWatch)
{
    _watch->moveToThread(_thread.get());
    connect(_thread.get(), &QThread::finished, _watch, &QObject::deleteLater);
    connect(_watch, &PathWatch::changedSignal, this, &ContainerWatch::changedSignal);
    _thread->start(QThread::LowPriority);
    setFile(file);
}

ContainerWatch::~ContainerWatch()
{
    disconnect(_watch, nullptr, this, nullptr);
    _thread->quit();
    if (_thread->wait(longestWait))
        return;
    // It comes to its end, and that of its object, when the file system answers.
    QThread* const stuck = _thread.release();
    connect(stuck, &QThread::finished, stuck, &QObject::deleteLater);
}

void ContainerWatch::setFile(const QString& file)
{
    QMetaObject::invokeMethod(_watch, [watch = _watch, file] { watch->setFile(file); });
}
