// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Polling for the parent process.
#include "bin/CheckParent.h"

#include <QCoreApplication>

#include <csignal>

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
        if (kill(_parentPid, 0) != 0)
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [] { QCoreApplication::exit(0); },
                Qt::QueuedConnection);
    } while (!_stop.tryAcquire(1, 100));
}
