// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/AbstractWorker.h"

void AbstractWorker::work()
{
    run();
    emit finished();
}
