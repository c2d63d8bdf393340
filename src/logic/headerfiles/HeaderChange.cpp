// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderChange.h"

std::string applied(std::string_view content, const HeaderChanges& changes)
{
    std::string result;
    result.reserve(content.size() + 256);
    std::size_t done = 0;
    for (const HeaderChange& change : changes) {
        result += content.substr(done, change.at - done);
        result += change.after;
        done = change.at + change.before.size();
    }
    result += content.substr(done);
    return result;
}

HeaderChanges reversed(const HeaderChanges& changes)
{
    HeaderChanges back;
    std::size_t added = 0;
    std::size_t removed = 0;
    for (const HeaderChange& change : changes) {
        back.push_back({change.at + added - removed, change.after, change.before});
        added += change.after.size();
        removed += change.before.size();
    }
    return back;
}

bool fits(std::string_view content, const HeaderChanges& changes)
{
    std::size_t done = 0;
    for (const HeaderChange& change : changes) {
        if (change.at < done || change.at > content.size() ||
            !content.substr(change.at).starts_with(change.before))
            return false;
        done = change.at + change.before.size();
    }
    return true;
}
