// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The objects that a script may name.
#pragma once

#include <QMutex>
#include <QRecursiveMutex>
#include <QWaitCondition>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

class QObject;

/// Each object with a mutex of its own. While one is held, the object stays in the table and thus
/// alive: what takes it out waits.
///
/// Locks in this order: the table's, then an object's. None is taken while that of the waiting is
/// held. Thread: any but where it says so.
class ObjectTable {
public:
    /// An object that can't leave the table as long as this exists.
    class Hold {
    public:
        explicit Hold(QRecursiveMutex& mutex)
            : _lock(mutex)
        {}

    private:
        std::unique_lock<QRecursiveMutex> _lock;
    };

    /// The decimal number of an object in requests and replies.
    static QString id(const QObject* object);
    /// The object of that number, null if none in the table has it.
    QObject* find(quint64 id) const;

    void attach(QObject* object);
    /// Takes an object out that is about to go. On the GUI thread: a call under way that only this
    /// thread can finish is finished here.
    void detach(QObject* object);
    /// Takes an object out after the calls under way, and hands it to `last` meanwhile.
    /// @returns false without a call if it is not in the table
    bool remove(QObject* object, const std::function<void()>& last);

    /// Nothing if the object is not in the table.
    std::optional<Hold> hold(QObject* object);
    bool contains(QObject* object) const;
    /// Waits until an object has left the table, for that time at most, or until `givenUp` says
    /// true, which is asked several times a second. @returns true if the object is gone
    bool waitUntilGone(QObject* object, std::chrono::milliseconds timeout,
                       const std::function<bool()>& givenUp);

private:
    mutable QRecursiveMutex _mapMutex;
    std::map<QObject*, std::unique_ptr<QRecursiveMutex>> _mutexMap;
    QMutex _waitMutex;
    QWaitCondition _waitCondition;  // an object has left
    quint64 _departures = 0;
};
