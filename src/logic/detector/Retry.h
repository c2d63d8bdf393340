// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Calls to a detector that are made again when they fail.
#pragma once

#include "imagelib/image/MException.h"
#include "imagelib/ipc/MTimer.h"

#include <atomic>
#include <functional>
#include <string>

/// How others end what a thread does for a request.
struct RequestFlags {
    /// Its end is wanted.
    std::atomic<bool> abort = false;
    /// Handed to each call of the detector's library, which then gives up.
    std::atomic<bool> cancel = false;
    /// The program ends: nothing new is begun, and nothing is waited for.
    std::atomic<bool> ending = false;

    /// From any thread: ends what is done now.
    void end()
    {
        abort = true;
        cancel = true;
    }
    /// Lets calls go on, unless the end is wanted. In this order an end() from another thread is
    /// never lost.
    void allow()
    {
        cancel = false;
        if (abort)
            cancel = true;
    }
};

/// Five attempts at calls that may be repeated, of a second each: a watchdog cancels an attempt
/// that takes longer. Failures are printed, and the last one is passed on. The end that `flags`
/// want comes at once, and without a message.
/// Thread: the one that makes the calls; the watchdog's own thread touches `cancel` only.
class Retry {
public:
    explicit Retry(RequestFlags& flags, const char* file = __builtin_FILE(),
                   int line = __builtin_LINE());

    /// @param calls  repeated from the first one on when any of them fails
    /// @throws what the last attempt threw; after success `cancel` is clear unless the end is
    /// wanted
    void run(const std::function<void()>& calls);

private:
    /// Returns if there is to be another attempt.
    void _forwardException(const morvend::MException& failure);

    static constexpr int MaxTrials = 4;
    static constexpr double Timeout = 1.0;  // seconds

    RequestFlags& _flags;
    const std::string _location;
    int _trials = 0;
    morvend::imglib::MTimer _watchdog;
};
