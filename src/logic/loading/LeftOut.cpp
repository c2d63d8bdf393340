// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ranges of numbers as text.
#include "logic/loading/LeftOut.h"

#include <algorithm>

void LeftOut::missing(int from, int to)
{
    if (from <= to)
        _add(_missing, from, to);
}

void LeftOut::unreadable(int number, const std::string& reason)
{
    if (!_unreadable)
        _reason = reason;
    _add(_unreadable, number, number);
}

void LeftOut::_add(std::optional<Range>& range, int low, int high)
{
    const long long count = static_cast<long long>(high) - low + 1;
    if (range)
        range = {std::min(range->low, low), std::max(range->high, high), range->count + count};
    else
        range = {low, high, count};
}

std::string LeftOut::_name(const Range& range)
{
    if (range.count == 1)
        return "image " + std::to_string(range.low) + " ";
    const bool all = range.count == static_cast<long long>(range.high) - range.low + 1;
    return (all ? "images " : std::to_string(range.count) + " images from ") +
           std::to_string(range.low) + " to " + std::to_string(range.high) + " ";
}

std::string LeftOut::text() const
{
    std::string text;
    if (_missing)
        text = _name(*_missing) + (_missing->count == 1 ? "is missing" : "are missing");
    if (!_unreadable)
        return text;
    if (_missing)
        text += "; ";
    return text + _name(*_unreadable) +
           (_unreadable->count == 1 ? "can't be read: " : "can't be read, the first: ") + _reason;
}
