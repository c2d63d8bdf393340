// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The way of results to the view, and the list of requests.
#include "logic/loading/LoaderContext.h"

#include "logic/ImageLoaderThread.h"
#include "logic/support/Console.h"

#include <algorithm>
#include <utility>

LoaderContext::LoaderContext(std::shared_ptr<LoaderDesk> desk, std::string comeBackTo)
    : series(ImageLoaderThread::pushedImages)
    , _desk(std::move(desk))
    , _comeBackTo(std::move(comeBackTo))
{
    const std::lock_guard lock(_desk->mutex);
    asked = delivered = _comeBackTo.empty() ? -1 : _desk->delivered;
}

void LoaderContext::abandon()
{
    _abandoned = true;
    series.cancel();
}

void LoaderContext::comeBack()
{
    if (_comeBackTo.empty())
        return;
    series.open(_comeBackTo);
    opened(std::string(_comeBackTo));
}

void LoaderContext::opened(const std::string& path)
{
    _comeBackTo.clear();
    _openedAs = path;
}

void LoaderContext::deliver(const LoaderData& record, const std::function<void()>& print)
{
    const std::lock_guard lock(_desk->mutex);
    if (_desk->current != this)
        return;
    _noteBounds();
    _desk->results.push_back(record);
    _desk->delivered = record.index;
    _desk->openedAs = _openedAs;
    emit _desk->loader->newImage();
    print();
}

void LoaderContext::fail(const QString& message, bool silent)
{
    const std::lock_guard lock(_desk->mutex);
    if (_desk->current != this)
        return;
    _noteBounds();
    if (!silent)
        emit _desk->loader->loadError(message);
}

void LoaderContext::notice(const QString& message)
{
    const std::lock_guard lock(_desk->mutex);
    if (_desk->current == this)
        emit _desk->loader->notice(message);
}

void LoaderContext::scan()
{
    scanQueued = false;
    const unsigned int number = enter({.what = {}, .reads = true});
    begin(number);
    try {
        series.update();
    } catch (const std::exception& error) {
        // What is known of the series stays; a picture of it is on the screen.
        console::warn(std::string("WARNING: ") + error.what() + '\n');
    }
    leave(number);
    const std::lock_guard lock(_desk->mutex);
    if (_desk->current != this)
        return;
    _noteBounds();
    emit _desk->loader->imageContainerChangedSignal();
}

void LoaderContext::_noteBounds()
{
    if (!_comeBackTo.empty())
        return;  // they are those of the series on show
    const bool empty = series.empty();
    _desk->firstIndex = empty ? -1 : series.first();
    _desk->lastIndex = empty ? -1 : series.last();
}

unsigned int LoaderContext::enter(Request request)
{
    const std::lock_guard lock(_mutex);
    _requests.push_back({++_lastNumber, std::move(request), Clock::now()});
    return _lastNumber;
}

template <class Change>
void LoaderContext::_change(unsigned int number, Change&& change)
{
    const std::lock_guard lock(_mutex);
    const auto entry = std::ranges::find(_requests, number, &Entry::number);
    if (entry != _requests.end())
        change(*entry);
}

void LoaderContext::begin(unsigned int number)
{
    _change(number, [](Entry& entry) { entry.begun = Clock::now(); });
}

void LoaderContext::setWay(unsigned int number, int way)
{
    _change(number, [=](Entry& entry) { entry.request.way = way; });
}

bool LoaderContext::overtaken(unsigned int number, int way) const
{
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(_requests, [=](const Entry& entry) {
        return entry.number > number && !entry.request.what.empty() &&
               (way == 0 || entry.request.way != way);
    });
}

void LoaderContext::answer(unsigned int number)
{
    _change(number, [](Entry& entry) { entry.answered = true; });
}

void LoaderContext::leave(unsigned int number)
{
    const std::lock_guard lock(_mutex);
    _requests.remove_if([number](const Entry& entry) { return entry.number == number; });
}

bool LoaderContext::loading() const
{
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(_requests,
                               [](const Entry& entry) { return !entry.request.what.empty(); });
}

bool LoaderContext::queued(unsigned int number) const
{
    const std::lock_guard lock(_mutex);
    const auto entry = std::ranges::find(_requests, number, &Entry::number);
    return entry != _requests.end() && !entry->begun;
}

std::optional<LoaderContext::Waiting> LoaderContext::oldest() const
{
    const std::lock_guard lock(_mutex);
    const auto entry = std::ranges::find_if(
        _requests, [](const Entry& each) { return !each.answered && !each.request.what.empty(); });
    if (entry == _requests.end())
        return {};
    return Waiting{entry->request.what, Clock::now() - entry->entered};
}

bool LoaderContext::hangs(Clock::duration patience) const
{
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(_requests, [=](const Entry& entry) {
        return entry.begun && entry.request.reads && Clock::now() - *entry.begun >= patience;
    });
}
