// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The server side of the preloader process.
#pragma once

#include <string>

/// Serves images that were read ahead to the views of the process that owns the queue.
class PreloaderService {
public:
    explicit PreloaderService(std::string queueId);

    /// Never returns: the process ends with its parent.
    [[noreturn]] void run();

private:
    const std::string _queueId;
};
