// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Running the preloader's service.
#include "bin/PreloaderThread.h"

#include "imagelib/image/MException.h"
#include "logic/support/Console.h"

#include <QCoreApplication>

PreloaderThread::PreloaderThread(std::string queueId)
    : _queueId(std::move(queueId))
{}

void PreloaderThread::run()
{
    try {
        PreloaderService service(_queueId);
        {
            const std::lock_guard lock(_mutex);
            if (_stop)
                return;
            _service = &service;
        }
        service.run();
        const std::lock_guard lock(_mutex);
        _service = nullptr;
    } catch (const morvend::MException& error) {
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
