// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The client side of the preloader process.
#pragma once

#include <string>

/// A view's way to the images that the preloader process has read ahead.
class PreloaderClient {
public:
    /// Name of the queue between this process and its preloader: private to this process.
    static std::string messageQueueId();
};
