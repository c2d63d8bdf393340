// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The checks of the checking mutex.
#include "logic/support/DebugMutex.h"

#include "logic/support/Assert.h"

#include <QThread>

DebugMutex::~DebugMutex() { assert(_status == 0); }

void DebugMutex::lock()
{
    QRecursiveMutex::lock();
    _take();
}

bool DebugMutex::tryLock()
{
    if (!QRecursiveMutex::tryLock())
        return false;
    _take();
    return true;
}

void DebugMutex::unlock()
{
    assert(_status > 0 && _process == QThread::currentThreadId());
    --_status;
    QRecursiveMutex::unlock();
}

void DebugMutex::_take()
{
    assert(_status == 0 || _process == QThread::currentThreadId());
    _process = QThread::currentThreadId();
    ++_status;
}
