// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The one worker of the preloader process.
#pragma once

#include <QThread>

#include <string>

/// Runs the preloader's service over a queue, until the process ends.
class PreloaderThread : public QThread {
    Q_OBJECT
public:
    explicit PreloaderThread(std::string queueId);

protected:
    void run() override;

private:
    const std::string _queueId;
};
