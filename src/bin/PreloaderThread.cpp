// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Running the preloader's service.
#include "bin/PreloaderThread.h"

#include "logic/support/Console.h"

#include <QCoreApplication>
#include <QScopeGuard>

PreloaderThread::PreloaderThread(std::string queueId)
    : _queueId(std::move(queueId))
{}

void PreloaderThread::run()
{
    try {
        PreloaderService service(_queueId);
        const auto publish = [this](PreloaderService* current) {
            const std::lock_guard lock(_mutex);
            _service = current;
            return !_stop;
        };
        // Also when run() throws: stop() must not use a destroyed service.
        const auto withdraw = qScopeGuard([&] { publish(nullptr); });
        if (publish(&service))
            service.run();
    } catch (const std::exception& error) {
        console::warn(std::string("Preloader: ") + error.what() + '\n');
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    }
}

void PreloaderThread::stop()
{
    const std::lock_guard lock(_mutex);
    _stop = true;
    if (_service)
        _service->stop();
}
