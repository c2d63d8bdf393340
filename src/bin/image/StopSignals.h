// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Ends a long command between two images instead of in the middle of one.
#pragma once

#include <array>

#include <csignal>

namespace tarvik::tool {

/// While one exists, SIGINT, SIGTERM and SIGHUP are noted and don't end the process. One at a time.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// @throws MTerminateException if a signal has arrived
    void check() const;

private:
    static constexpr std::array Signals{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, Signals.size()> _before;
};

}  // namespace tarvik::tool
