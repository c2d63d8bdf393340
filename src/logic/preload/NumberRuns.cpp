// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/preload/NumberRuns.h"

#include <iterator>

void NumberRuns::add(Number number)
{
    Number first = number;
    Number last = number;
    const auto after = _runs.upper_bound(number);
    if (after != _runs.begin()) {
        const auto before = std::prev(after);
        if (before->second >= number)
            return;
        if (before->second + 1 == number) {
            first = before->first;
            _runs.erase(before);
        }
    }
    if (after != _runs.end() && after->first == number + 1) {
        last = after->second;
        _runs.erase(after);
    }
    _runs[first] = last;
}

void NumberRuns::remove(Number number)
{
    const auto after = _runs.upper_bound(number);
    if (after == _runs.begin() || std::prev(after)->second < number)
        return;
    const auto run = std::prev(after);
    const auto [first, last] = *run;
    _runs.erase(run);
    if (first < number)
        _runs[first] = number - 1;
    if (number < last)
        _runs[number + 1] = last;
}
