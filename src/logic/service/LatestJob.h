// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work on a worker of which only the newest counts.
#pragma once

#include "logic/loading/WorkerPool.h"
#include "logic/support/Console.h"

#include <QObject>

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

/// Runs pieces of work of one owner one at a time on the threads that all views share. While one
/// runs, the newest of the others waits and takes the place of those before. Nothing waits for a
/// worker. Thread: the owner's; work runs on any.
template <class Result>
class LatestJob {
public:
    using Work = std::function<Result()>;
    using Done = std::function<void(const Result&)>;

    /// @param done  called on the owner's thread, from the event loop, with each result
    explicit LatestJob(Done done)
        : _done(std::move(done))
        , _way(std::make_shared<Way>())
    {
        _way->receiver = &_context;
    }
    ~LatestJob()
    {
        const std::lock_guard lock(_way->mutex);
        _way->receiver = nullptr;
    }
    LatestJob(const LatestJob&) = delete;
    LatestJob& operator=(const LatestJob&) = delete;

    void ask(Work work)
    {
        _waiting = std::move(work);
        _start();
    }
    /// Drops what waits and the result of what runs.
    void cancel()
    {
        _waiting = {};
        ++_number;
    }

private:
    struct Way {
        std::mutex mutex;
        QObject* receiver = nullptr;  // null when the owner has gone; under the mutex
    };

    void _start()
    {
        if (_running || !_waiting)
            return;
        _running = true;
        const auto arrived = [this, number = _number](const std::optional<Result>& result) {
            _running = false;
            if (result && number == _number)
                _done(*result);
            _start();
        };
        WorkerPool::process().post([way = _way, work = std::exchange(_waiting, {}),
                                    arrived]() mutable {
            std::optional<Result> result;
            try {
                result = work();
            } catch (const std::exception& error) {
                console::warn(std::string("WARNING: ") + error.what() + '\n');
            }
            work = {};  // its pixels
            const std::lock_guard lock(way->mutex);
            if (way->receiver)
                QMetaObject::invokeMethod(
                    way->receiver, [arrived, result] { arrived(result); }, Qt::QueuedConnection);
        });
    }

    const Done _done;
    QObject _context;  // calls that are under way end with it
    const std::shared_ptr<Way> _way;
    Work _waiting;
    bool _running = false;
    unsigned int _number = 0;  // of the last cancel()
};
