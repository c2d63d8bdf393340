// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The threads that all views share.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

/// Runs jobs in the order in which they come, a bounded number at a time.
///
/// A job that waits instead of computing, such as for a mount that does not answer, is not counted
/// once others have waited a while for a thread: a new thread takes the next job. A thread ends
/// when it finds too many others, or no work for a while. Nothing ever waits for a thread, not even
/// the end of the process: each owns what it needs.
///
/// Background jobs give way: one begins only when no other job is queued or running, or when it has
/// waited for the time of patience, and they take half of the threads at most. They should be
/// short. Thread: any.
class WorkerPool {
public:
    using Job = std::function<void()>;
    struct Limits {
        /// Jobs that compute at a time.
        std::size_t threads = 4;
        /// Threads in all.
        std::size_t mostThreads = 256;
        /// Time after which a job that has used hardly any of it on a processor counts as waiting,
        /// and after which a background job no longer gives way to running ones.
        std::chrono::milliseconds patience{500};
        /// Time after which a thread without work ends.
        std::chrono::milliseconds idle{10'000};
    };
    struct Usage {
        std::size_t threads = 0;    // in all
        std::size_t busy = 0;       // with a job
        std::size_t uncounted = 0;  // whose job waits or is no longer wanted
        std::size_t queued = 0;     // jobs that no thread has taken yet
    };

    /// The pool of this process: a thread for each core, 4 to 16, and memory given back after work.
    /// It is never destroyed.
    static WorkerPool& process();

    explicit WorkerPool(const Limits& limits);
    /// Drops what is queued; running jobs go on by themselves.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// @param owner  names the job for leaveBehind()
    void post(Job job, const void* owner = nullptr);
    void postBackground(Job job, const void* owner = nullptr);
    /// The result of this owner's running job is no longer wanted: the job is not counted from now
    /// on.
    void leaveBehind(const void* owner);
    /// Calls `tidy` on a thread of the pool, once in a while after work and soon after askToTidy().
    void setTidy(std::function<void()> tidy);
    void askToTidy();
    Usage usage() const;

private:
    struct State;
    const std::shared_ptr<State> _state;  // with the threads
};
