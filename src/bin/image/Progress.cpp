// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One line of progress on a terminal.
#include "bin/image/Progress.h"

#include <iostream>

#include <unistd.h>

namespace tarvik::tool {

Progress::Progress(int last)
    : _last(last)
    , _watched(::isatty(STDERR_FILENO) == 1)
{}

Progress::~Progress()
{
    if (_watched)
        std::cerr << "\r\033[K" << std::flush;
}

void Progress::show(int number)
{
    if (_watched)
        std::cerr << "\rImage " << number << " of " << _last << std::flush;
}

}  // namespace tarvik::tool
