// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Polling for the parent process.
#include "bin/CheckParent.h"

#include <QCoreApplication>

#include <csignal>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Has the process ended? One that its own parent has not asked for yet still takes signals.
bool gone(int pid)
{
    if (kill(pid, 0) != 0)
        return true;
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
    if (handle < 0)
        return false;
    pollfd end{handle, POLLIN, 0};
    const bool ended = ::poll(&end, 1, 0) > 0;
    ::close(handle);
    return ended;
}

}  // namespace

CheckParent::CheckParent(int parentPid)
    : _parentPid(parentPid)
{}

CheckParent::~CheckParent()
{
    _stop.release();
    wait();
}

void CheckParent::run()
{
    // A quit would first ask all windows, and one that must not be closed could refuse. Leaving
    // again and again is harmless, and needed when the event loop has not begun yet.
    do {
        if (gone(_parentPid))
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [] { QCoreApplication::exit(0); },
                Qt::QueuedConnection);
    } while (!_stop.tryAcquire(1, 100));
}
