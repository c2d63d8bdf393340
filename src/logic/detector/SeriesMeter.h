// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Gathers what the threads of a series count.
#pragma once

#include "logic/detector/SeriesProgress.h"

#include <chrono>
#include <deque>
#include <mutex>

/// One for each pair of reader and writer, which share it with the relay and with whoever shows it.
/// Thread: any; the mutex is held briefly.
class SeriesMeter {
public:
    SeriesProgress progress() const;

    // The reader.
    void startReading();
    void received();
    /// @param frames  all that is missing so far
    void setLost(std::int64_t frames);
    // The writer.
    /// @param images  0: not known
    void startWriting(std::int64_t images);
    void setFileOpen(bool open);
    void written(std::int64_t bytes);
    /// @param bytes  that the disk has left
    void setDiskFree(std::int64_t bytes);
    // The relay.
    void shown();
    void leftOut();

private:
    using Clock = std::chrono::steady_clock;
    struct Sample {
        Clock::time_point time;
        std::int64_t received;
    };

    double _rate() const;

    mutable std::mutex _mutex;
    SeriesProgress _counts;
    std::deque<Sample> _samples;  // of the last few seconds
    std::optional<std::int64_t> _diskFree;
};
