// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Jobs that run one after the other, on whatever thread of a pool is free.
#pragma once

#include "logic/loading/WorkerPool.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

/// A queue of jobs, first in first out: each sees what the one before has done. Each job takes its
/// turn in the pool, so that strands share the threads fairly. A strand lives until its last job
/// has ended, even if nobody else holds it. Thread: any.
class Strand : public std::enable_shared_from_this<Strand> {
public:
    using Job = WorkerPool::Job;

    static std::shared_ptr<Strand> create(WorkerPool& pool);

    void post(Job job);
    /// Drops the jobs that have not begun.
    void drop();
    /// Drops the jobs that have not begun, and no longer counts the thread of the running one.
    void leaveBehind();
    /// Waits until no job is queued or running. Must not be called from a job.
    void waitForDone();

private:
    explicit Strand(WorkerPool& pool)
        : _pool(pool)
    {}
    /// Asks the pool for a turn; the caller holds the mutex.
    void _enter();
    /// Runs one job.
    void _runNext();

    WorkerPool& _pool;  // of the process
    std::mutex _mutex;
    std::condition_variable _done;
    std::deque<Job> _jobs;
    bool _running = false;  // or waiting for its turn in the pool
};
