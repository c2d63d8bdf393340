// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Polling for the parent process.
#include "bin/CheckParent.h"

#include <QCoreApplication>

#include <csignal>
#include <fstream>
#include <string>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// True if the main thread has ended. Others of a killed process may take seconds to follow if the
/// processors are busy and their priority is low, such as those of graphics drivers.
bool mainThreadEnded(int pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string status;
    std::getline(file, status);
    const std::size_t name = status.rfind(") ");  // it may hold anything
    return name != std::string::npos && name + 2 < status.size() && status[name + 2] == 'Z';
}

/// True if the process has ended. One not yet waited for by its parent still takes signals.
bool gone(int pid)
{
    if (kill(pid, 0) != 0 || mainThreadEnded(pid))
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
    // quit() would first ask all windows, and one of them could refuse. Calling exit()
    // repeatedly is harmless, and needed while the event loop has not begun.
    do {
        if (gone(_parentPid))
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [] { QCoreApplication::exit(0); },
                Qt::QueuedConnection);
    } while (!_stop.tryAcquire(1, 100));
}
