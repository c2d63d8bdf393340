// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Recognises kinds of failures and counts them.
#include "logic/support/FailureSummary.h"

#include <algorithm>

namespace {

/// Later kinds count as the last one: texts from files may vary without end.
constexpr std::size_t mostKinds = 50;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string FailureSummary::kindOf(const std::string& reason)
{
    std::string kind;
    for (const char c : reason)
        if (!isDigit(c))
            kind += c;
        else if (!kind.ends_with('#'))
            kind += '#';
    return kind;
}

bool FailureSummary::add(long long number, const std::string& reason)
{
    const std::string kind = kindOf(reason);
    auto known = std::find_if(_kinds.begin(), _kinds.end(),
                              [&](const Kind& each) { return each.kind == kind; });
    if (known == _kinds.end() && _kinds.size() < mostKinds)
        known = _kinds.insert(_kinds.end(), {kind, reason, 0, number, number});
    else if (known == _kinds.end())
        --known;
    known->first = std::min(known->first, number);
    known->last = std::max(known->last, number);
    return ++known->count == 1;
}

std::vector<std::string> FailureSummary::lines() const
{
    std::vector<std::string> lines;
    for (const Kind& kind : _kinds)
        lines.push_back(kind.count == 1
                            ? kind.reason
                            : std::to_string(kind.count) + " images from " +
                                  std::to_string(kind.first) + " to " + std::to_string(kind.last) +
                                  " can't be read, the first because of: " + kind.reason);
    return lines;
}
