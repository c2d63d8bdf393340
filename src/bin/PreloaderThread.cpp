// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Running the preloader's service.
#include "bin/PreloaderThread.h"

#include "logic/PreloaderService.h"

PreloaderThread::PreloaderThread(std::string queueId)
    : _queueId(std::move(queueId))
{}

void PreloaderThread::run() { PreloaderService(_queueId).run(); }
