// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One of the two processes that hammer a queue and are killed over and over.
#pragma once

#include <atomic>
#include <cstdint>

namespace tarvik::tests {

/// What the workers report, in memory that they share with the test.
struct KillReport {
    struct Side {
        std::atomic<std::uint64_t> verified;  // messages whose content was compared
        std::atomic<std::uint64_t> images;    // of them in shared memory
        std::atomic<std::uint64_t> peers;     // conversations begun
        std::atomic<std::uint32_t> faults;
        char fault[256];  // the first one
    };
    Side sides[2];
};

/// Runs until it is killed. `life` numbers the processes of a side.
[[noreturn]] void runKillWorker(const char* queue, unsigned side, std::uint64_t seed,
                                std::uint64_t life, int reportFd);

}  // namespace tarvik::tests
