// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What loading has taken in this process, step by step.
#pragma once

#include <array>
#include <chrono>

/// Sums over the jobs of all views since the start of the process; the difference of two tells what
/// happened between them. Thread: any.
struct StepTimes {
    enum Step {
        Open,        ///< opening of series
        Cache,       ///< queries to the preloader, hits and misses
        Source,      ///< reading and decoding here
        Mask,        ///< mask and its thumbnail
        Statistics,  ///< numbers, histogram and default contrast
        Region,      ///< thumbnail and region of interest
        Count
    };

    std::array<std::chrono::nanoseconds, Count> spent{};
    unsigned long long hits = 0;    ///< images that came from the preloader
    unsigned long long images = 0;  ///< finished records

    /// The sums so far.
    static StepTimes now();

    // For jobs.
    static void add(Step step, std::chrono::nanoseconds time);
    static void addHit();
    static void addImage();
};
