// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Waiting on a descriptor until a point in time.
#pragma once

#include <algorithm>
#include <chrono>

#include <poll.h>

namespace morvend::imglib {

/// A point in time from now on; a negative time-out never passes.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(std::chrono::milliseconds timeout)
        : _at(timeout.count() < 0 ? Clock::time_point::max()
                                  : Clock::now() + std::min(timeout, Longest))
    {}
    bool never() const { return _at == Clock::time_point::max(); }
    bool passed() const { return !never() && Clock::now() >= _at; }
    Clock::time_point at() const { return _at; }
    /// This one, or that in `time`, whichever comes first.
    Deadline sooner(std::chrono::milliseconds time) const
    {
        Deadline other(time);
        other._at = std::min(other._at, _at);
        return other;
    }
    /// For poll(): -1 for no deadline, never less than the time left.
    int milliseconds() const
    {
        if (never())
            return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(_at - Clock::now());
        return static_cast<int>(std::max(left, std::chrono::milliseconds(0)).count());
    }

private:
    static constexpr std::chrono::milliseconds Longest = std::chrono::hours(500);
    Clock::time_point _at;
};

/// Waits until the descriptor has one of the events, or has ended; false when the deadline passes
/// or a signal comes first.
inline bool waitFor(int fd, short events, const Deadline& deadline)
{
    pollfd entry{fd, events, 0};
    return ::poll(&entry, 1, deadline.milliseconds()) > 0;
}

}  // namespace morvend::imglib
