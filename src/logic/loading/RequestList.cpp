// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Changes and queries, each under the mutex.
#include "logic/loading/RequestList.h"

#include <algorithm>
#include <utility>

RequestList::Entries::iterator RequestList::_find(unsigned int number)
{
    return std::ranges::find(_entries, number, &Entry::number);
}

RequestList::Entries::const_iterator RequestList::_find(unsigned int number) const
{
    return std::ranges::find(_entries, number, &Entry::number);
}

unsigned int RequestList::enter(Request request)
{
    const std::lock_guard lock(_mutex);
    _entries.push_back({++_lastNumber, std::move(request), Clock::now()});
    return _lastNumber;
}

bool RequestList::begin(unsigned int number)
{
    const std::lock_guard lock(_mutex);
    const auto entry = _find(number);
    if (entry == _entries.end())
        return false;
    entry->begun = Clock::now();
    return true;
}

void RequestList::setWay(unsigned int number, int way)
{
    const std::lock_guard lock(_mutex);
    if (const auto entry = _find(number); entry != _entries.end())
        entry->request.way = way;
}

void RequestList::answer(unsigned int number)
{
    const std::lock_guard lock(_mutex);
    if (const auto entry = _find(number); entry != _entries.end())
        entry->answered = true;
}

void RequestList::leave(unsigned int number)
{
    const std::lock_guard lock(_mutex);
    _entries.remove_if([=](const Entry& entry) { return entry.number == number; });
}

void RequestList::drop()
{
    const std::lock_guard lock(_mutex);
    _entries.remove_if(
        [](const Entry& entry) { return !entry.begun && !entry.request.what.empty(); });
    for (Entry& entry : _entries)
        entry.unwanted = true;
}

bool RequestList::dropped(unsigned int number) const
{
    const std::lock_guard lock(_mutex);
    const auto entry = _find(number);
    return entry == _entries.end() || entry->unwanted;
}

bool RequestList::overtaken(unsigned int number, int way) const
{
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(_entries, [=](const Entry& entry) {
        return entry.number > number && !entry.request.what.empty() &&
               (way == 0 || entry.request.way != way);
    });
}

bool RequestList::loading() const
{
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(_entries,
                               [](const Entry& entry) { return !entry.request.what.empty(); });
}

bool RequestList::queued(unsigned int number) const
{
    const std::lock_guard lock(_mutex);
    const auto entry = _find(number);
    return entry != _entries.end() && !entry->begun;
}

std::optional<RequestList::Waiting> RequestList::oldest() const
{
    const std::lock_guard lock(_mutex);
    const auto entry = std::ranges::find_if(
        _entries, [](const Entry& each) { return !each.answered && !each.request.what.empty(); });
    if (entry == _entries.end())
        return {};
    return Waiting{entry->request.what, Clock::now() - entry->entered};
}

bool RequestList::hangs(Clock::duration patience) const
{
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(_entries, [=](const Entry& entry) {
        return entry.begun && entry.request.reads && Clock::now() - *entry.begun >= patience;
    });
}
