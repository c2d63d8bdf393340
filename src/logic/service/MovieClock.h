// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The clock of a movie.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// The steady clock, and the sleep of the thread that uses it; tests replace it
/// it. Thread: one.
class MovieClock {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr Time never = Time::max();

    virtual ~MovieClock() = default;
    virtual Time now() { return std::chrono::steady_clock::now(); }
    /// Sleeps until the condition is notified or the time is reached. May wake up without either.
    virtual void sleep(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                       Time until)
    {
        if (until == never)
            condition.wait(lock);
        else
            condition.wait_until(lock, until);
    }
};
