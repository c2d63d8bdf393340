// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Waits that end when a flag is set.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace morvend::imglib {

/// A point in time that a call lasts until.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    /// Not a number and negative values count as 0; more than ten years as ten years.
    explicit Deadline(double seconds)
        : _end(_begin + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(
                            seconds > 0 ? std::min(seconds, 3e8) : 0)))
    {}
    double elapsed() const { return std::chrono::duration<double>(Clock::now() - _begin).count(); }
    bool over() const { return Clock::now() >= _end; }
    /// What is left, 0 at least and `most` at most.
    int milliseconds(int most) const
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(_end - Clock::now()).count();
        return static_cast<int>(std::clamp<std::int64_t>(left, 0, most));
    }

    /// Waits, `most` milliseconds at most and not beyond the end, while `cancel` is not set.
    void wait(int most, const std::atomic<bool>& cancel) const
    {
        const auto until = std::min(_end, Clock::now() + std::chrono::milliseconds(most));
        while (!cancel && Clock::now() < until)
            std::this_thread::sleep_until(
                std::min(until, Clock::now() + std::chrono::milliseconds(20)));
    }

private:
    Clock::time_point _begin = Clock::now();
    Clock::time_point _end;
};

}  // namespace morvend::imglib
