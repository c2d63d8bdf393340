// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A one-shot watchdog that runs a function when it isn't stopped in time.
#pragma once

#include <functional>
#include <memory>

namespace morvend::imglib {

/// Calls a function on a thread of its own unless stop() comes first. No caller yet: the interface
/// for scripts.
///
/// Once stop() has returned, the function is not running and will not be called. From within the
/// function itself start(), stop() and the destructor may be called too: they don't wait for it.
/// Thread: any. The caller must hold no lock that the function takes; the function must not throw.
class MTimer {
public:
    MTimer();
    /// Stops.
    ~MTimer();
    MTimer(const MTimer&) = delete;
    MTimer& operator=(const MTimer&) = delete;

    /// Stops, then counts again: `onTimeout` is called once after `seconds`. Negative values and
    /// NaN count as 0; infinity never comes.
    void start(double seconds, const std::function<void()>& onTimeout);
    void stop();

private:
    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace morvend::imglib
