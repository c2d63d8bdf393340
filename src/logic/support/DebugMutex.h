// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A checking mutex for hunting locking faults.
#pragma once

#include <QMutex>
#include <Qt>

/// A recursive mutex that can stand in for any QRecursiveMutex and asserts its correct use: it is
/// unlocked only by its owner, not more often than locked, and not locked when it is destroyed.
/// No caller yet: for hunting a suspected locking fault. Thread: any.
class DebugMutex : private QRecursiveMutex {
public:
    DebugMutex() = default;
    ~DebugMutex();

    void lock();
    /// @returns false if another thread holds the mutex
    bool tryLock();
    void unlock();

    // The spelling of the standard library's locks.
    bool try_lock() { return tryLock(); }

private:
    void _take();

    Qt::HANDLE _process = nullptr;
    int _status = 0;
};
