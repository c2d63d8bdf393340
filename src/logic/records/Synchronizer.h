// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keeps one record equal across the views of a group.
#pragma once

#include "logic/support/Assert.h"

#include <memory>
#include <set>
#include <vector>

template <class T>
class Synchronizer;

/// One view's copy of a shared record. Its owner attaches and detaches it through TarvikCore.
///
/// A detached observer keeps its synchronizer, even if that is destroyed: every detach is
/// followed at once by a new attach or by the end of the observer. Thread: GUI only.
template <class T>
class AbstractObserver {
public:
    AbstractObserver() = default;
    AbstractObserver(const AbstractObserver&) = delete;
    AbstractObserver& operator=(const AbstractObserver&) = delete;
    virtual ~AbstractObserver() = default;
    /// The record arrived by notify() and differs from the previous one.
    virtual void virtualNotify() = 0;

    /// Takes over the group's record and calls virtualNotify(), if it differs. Equality is the only
    /// guard against an endless exchange of notifications.
    void notify()
    {
        assert(_synchronizer);
        if (_data != _synchronizer->data()) {
            _data = _synchronizer->data();
            virtualNotify();
        }
    }

    /// Becomes a member of the synchronizer's group and takes over its record silently.
    void join(Synchronizer<T>& synchronizer)
    {
        _synchronizer = &synchronizer;
        synchronizer.attach(*this);
        _data = synchronizer.data();
    }

    /// Hands a record of this view to its group. Nothing happens without a group, or when the
    /// group has the record already.
    void spread(const T& record)
    {
        if (!_synchronizer || _data == record)
            return;
        _data = record;
        _synchronizer->setData(record);
    }

    const T& data() const { return _data; }

private:
    Synchronizer<T>* _synchronizer = nullptr;
    T _data;
};

/// The record of one group and its members. A notified member may destroy it,
/// such as by leaving as the last one, which ends the pass. Thread: GUI only.
template <class T>
class Synchronizer {
public:
    using Observer = AbstractObserver<T>;

    Synchronizer() = default;
    Synchronizer(const Synchronizer&) = delete;
    Synchronizer& operator=(const Synchronizer&) = delete;
    ~Synchronizer() { *_alive = false; }

    const T& data() const { return _data; }
    bool enabled() const { return _enabled; }
    bool empty() const { return _observers.empty(); }

    /// Inserts an observer; a second insertion does nothing.
    void attach(Observer& observer) { _observers.insert(&observer); }
    /// @returns whether the observer was a member
    bool detach(Observer& observer) { return _observers.erase(&observer) > 0; }

    /// Stores a record, also while disabled, and notifies all members when enabled.
    void setData(const T& data)
    {
        _data = data;
        if (_enabled)
            _notifyAll();
    }

    /// Switching on notifies all members, so that they take over the record stored last.
    void setEnabled(bool enabled)
    {
        if (enabled == _enabled)
            return;
        _enabled = enabled;
        if (enabled)
            _notifyAll();
    }

private:
    void _notifyAll()
    {
        // A notified view may make others join or leave, hence the copy.
        const std::vector<Observer*> members(_observers.begin(), _observers.end());
        const std::shared_ptr<const bool> alive = _alive;
        for (Observer* member : members) {
            if (!*alive)
                return;
            if (_observers.contains(member))
                member->notify();
        }
    }

    T _data;
    std::set<Observer*> _observers;
    bool _enabled = true;
    const std::shared_ptr<bool> _alive = std::make_shared<bool>(true);
};
