// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The loop of the preloader process.
#include "logic/PreloaderService.h"

#include <unistd.h>

#include <utility>

PreloaderService::PreloaderService(std::string queueId)
    : _queueId(std::move(queueId))
{}

void PreloaderService::run()
{
    for (;;)
        pause();
}
