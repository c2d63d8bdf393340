// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/core/ObjectGenerator.h"

#include "logic/core/TarvikCore.h"

#include <QThread>

ObjectGenerator::ObjectGenerator(TarvikCore* core)
    : _core(core)
{}

void* ObjectGenerator::make()
{
    const auto makeHere = [this] { _object = virtualmake(); };
    if (QThread::currentThread() == _core->thread())
        makeHere();
    else
        QMetaObject::invokeMethod(_core, makeHere, Qt::BlockingQueuedConnection);
    return _object;
}
