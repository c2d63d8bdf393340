// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One job at a time in the pool.
#include "logic/loading/Strand.h"

#include <utility>

std::shared_ptr<Strand> Strand::create(WorkerPool& pool)
{
    return std::shared_ptr<Strand>(new Strand(pool));
}

void Strand::post(Job job)
{
    const std::lock_guard lock(_mutex);
    _jobs.push_back(std::move(job));
    if (!std::exchange(_running, true))
        _enter();
}

void Strand::_enter()
{
    _pool.post([self = shared_from_this()] { self->_runNext(); }, this);
}

void Strand::_runNext()
{
    std::unique_lock lock(_mutex);
    if (!_jobs.empty()) {
        Job job = std::move(_jobs.front());
        _jobs.pop_front();
        lock.unlock();
        job();
        job = nullptr;
        lock.lock();
    }
    if (!_jobs.empty())
        return _enter();
    _running = false;
    _done.notify_all();
}

void Strand::drop()
{
    std::deque<Job> dropped;  // ends after the lock
    const std::lock_guard lock(_mutex);
    dropped.swap(_jobs);
}

void Strand::leaveBehind()
{
    drop();
    _pool.leaveBehind(this);
}

void Strand::waitForDone()
{
    std::unique_lock lock(_mutex);
    _done.wait(lock, [this] { return !_running; });
}
