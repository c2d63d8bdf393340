// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The one worker of the preloader process.
#pragma once

#include "logic/preload/PreloaderService.h"

#include <QThread>

#include <memory>
#include <mutex>
#include <string>

/// Runs the preloader's service over a queue until it is stopped. Ends the application if the
/// queue can't be opened.
class PreloaderThread : public QThread {
    Q_OBJECT
public:
    explicit PreloaderThread(std::string queueId);

    /// Ends the service, which then removes its files. Thread: any.
    void stop();

protected:
    void run() override;

private:
    const std::string _queueId;
    std::mutex _mutex;
    bool _stop = false;
    PreloaderService* _service = nullptr;  // while it runs
};
