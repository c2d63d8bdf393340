// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The hand-over of a request for an object to the GUI thread.
#include "logic/core/ObjectGenerator.h"

#include "logic/tarvikcore.h"

#include <QThread>

ObjectGenerator::ObjectGenerator(TarvikCore* core)
    : _core(core)
{
    connect(this, &ObjectGenerator::generateSignal, core, &TarvikCore::generateObjectSlot,
            Qt::BlockingQueuedConnection);
}

void* ObjectGenerator::make()
{
    if (QThread::currentThread() == _core->thread())
        _object = virtualmake();
    else
        emit generateSignal(this);
    return _object;
}
