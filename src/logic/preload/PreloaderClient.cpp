// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The name of the preloader's queue.
#include "logic/preload/PreloaderClient.h"

#include <unistd.h>

std::string PreloaderClient::messageQueueId() { return "PRELOADER_" + std::to_string(getpid()); }
