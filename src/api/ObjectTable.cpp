// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/ObjectTable.h"

#include "logic/support/Assert.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <algorithm>

QString ObjectTable::id(const QObject* object)
{
    return QString::number(reinterpret_cast<quintptr>(object));
}

QObject* ObjectTable::find(quint64 id) const
{
    const std::lock_guard lock(_mapMutex);
    for (const auto& entry : _mutexMap)
        if (reinterpret_cast<quintptr>(entry.first) == id)
            return entry.first;
    return nullptr;
}

void ObjectTable::attach(QObject* object)
{
    const std::lock_guard lock(_mapMutex);
    _mutexMap[object] = std::make_unique<QRecursiveMutex>();
}

void ObjectTable::detach(QObject* object)
{
    {
        const std::lock_guard lock(_mapMutex);
        const auto entry = _mutexMap.find(object);
        if (entry == _mutexMap.end())
            return;
        QRecursiveMutex* const m = entry->second.get();
        // Another thread may hold it within a call that this thread is to do.
        while (!m->tryLock(1))
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        assert(m == _mutexMap[object].get());
        m->unlock();
        _mutexMap.erase(object);
    }
    const std::lock_guard lock(_waitMutex);
    ++_departures;
    _waitCondition.wakeAll();
}

bool ObjectTable::remove(QObject* object, const std::function<void()>& last)
{
    const std::lock_guard lock(_mapMutex);
    const auto entry = _mutexMap.find(object);
    if (entry == _mutexMap.end())
        return false;
    entry->second->lock();
    entry->second->unlock();
    _mutexMap.erase(entry);
    last();
    return true;
}

std::optional<ObjectTable::Hold> ObjectTable::hold(QObject* object)
{
    const std::lock_guard lock(_mapMutex);
    const auto entry = _mutexMap.find(object);
    if (entry == _mutexMap.end())
        return {};
    return std::optional<Hold>(std::in_place, *entry->second);
}

bool ObjectTable::contains(QObject* object) const
{
    const std::lock_guard lock(_mapMutex);
    return _mutexMap.contains(object);
}

bool ObjectTable::waitUntilGone(QObject* object, std::chrono::milliseconds timeout,
                                const std::function<bool()>& givenUp)
{
    constexpr std::chrono::milliseconds Look{200};
    const QDeadlineTimer end(timeout);
    for (;;) {
        // Never both locks: detach() may have to wake this thread for one object while it takes
        // another one out, with the table locked.
        std::unique_lock lock(_waitMutex);
        const quint64 departures = _departures;
        lock.unlock();
        if (!contains(object))
            return true;
        if (end.hasExpired() || givenUp())
            return false;
        lock.lock();
        if (_departures == departures)
            _waitCondition.wait(&_waitMutex, std::min(end, QDeadlineTimer(Look)));
    }
}
