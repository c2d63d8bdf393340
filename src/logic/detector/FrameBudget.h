// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A bound for the frames that wait between two threads.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

/// Bytes that one thread takes before it hands on a frame, and the other gives back when it has
/// done with it. Where the second is slower the first waits, so that frames wait at the detector
/// instead of filling this computer's memory. Thread: any.
class FrameBudget {
public:
    /// 1 GiB, but an eighth of the memory at most.
    static std::int64_t usualBytes();

    explicit FrameBudget(std::int64_t bytes = usualBytes());

    /// Waits until so many bytes are free; a frame larger than the whole budget passes when nothing
    /// else waits. @returns false, and nothing is taken, if `cancel` is set meanwhile
    bool take(std::int64_t bytes, const std::atomic<bool>& cancel);
    void giveBack(std::int64_t bytes);
    std::int64_t taken() const;

private:
    const std::int64_t _bytes;
    mutable std::mutex _mutex;
    std::condition_variable _free;
    std::int64_t _taken = 0;
};
