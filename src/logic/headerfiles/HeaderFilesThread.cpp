// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderFilesThread.h"

#include "logic/headerfiles/HeaderFileError.h"
#include "logic/support/Console.h"

HeaderFilesThread::~HeaderFilesThread()
{
    abort();
    wait();
}

void HeaderFilesThread::print(const std::exception& error) const
{
    if (_mode == HeaderBatch::Mode::Preview)
        return;
    const auto* const known = dynamic_cast<const HeaderFileError*>(&error);
    console::warn(known ? known->printed() : "Error: " + std::string(error.what()) + '\n');
}
