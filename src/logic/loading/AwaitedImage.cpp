// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Any change of number or file restarts the wait.
#include "logic/loading/AwaitedImage.h"

#include <utility>

bool AwaitedImage::isOverdue(int number, const morvend::imglib::FileStamp& stamp, Time now)
{
    const bool same = _number == number && _stamp == stamp;
    if (!same)
        _since = now;
    _said = _said && same;
    _number = number;
    _stamp = stamp;
    return now - _since >= patience && !std::exchange(_said, true);
}
