// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Hands over under the mutex.
#include "logic/loading/LoaderDesk.h"

void LoaderDesk::serve(const LoaderContext* context)
{
    const std::lock_guard lock(_mutex);
    _current = context;
}

void LoaderDesk::take(std::list<LoaderData>& out)
{
    const std::lock_guard lock(_mutex);
    out.splice(out.end(), _results);
}

LoaderDesk::Bounds LoaderDesk::bounds() const
{
    const std::lock_guard lock(_mutex);
    return _bounds;
}

SeriesSession::Shown LoaderDesk::shown() const
{
    const std::lock_guard lock(_mutex);
    return _shown;
}

void LoaderDesk::_setBounds(const std::optional<Bounds>& bounds)
{
    if (!bounds)
        return;
    auto list = std::move(_bounds.readAhead);
    _bounds = *bounds;
    _bounds.readAhead = std::move(list);
}

template <class Action>
void LoaderDesk::_from(const LoaderContext& context, Action&& action)
{
    const std::lock_guard lock(_mutex);
    if (_current == &context)
        action();
}

void LoaderDesk::deliver(const LoaderContext& from, const std::optional<Bounds>& bounds,
                         const LoaderData& record, const std::string& openedAs)
{
    _from(from, [&] {
        if (openedAs != _shown.path)
            _bounds.readAhead.reset();
        _setBounds(bounds);
        _results.push_back(record);
        _shown = {openedAs, record.index};
        _signals.newImage();
    });
}

void LoaderDesk::fail(const LoaderContext& from, const std::optional<Bounds>& bounds,
                      const std::string& message)
{
    _from(from, [&] {
        _setBounds(bounds);
        if (!message.empty())
            _signals.loadError(message);
    });
}

void LoaderDesk::notice(const LoaderContext& from, const std::string& message)
{
    _from(from, [&] { _signals.notice(message); });
}

void LoaderDesk::scanned(const LoaderContext& from, const std::optional<Bounds>& bounds)
{
    _from(from, [&] {
        _setBounds(bounds);
        _signals.scanned();
    });
}

void LoaderDesk::readAhead(const LoaderContext& from, std::shared_ptr<const ReadAhead> list)
{
    _from(from, [&] {
        _bounds.readAhead = std::move(list);
        _signals.readAhead();
    });
}
