// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How a call ended, and calls that somebody else cancels.
#pragma once

#include "imagelib/image/MException.h"
#include "tests/support/Processes.h"

#include <atomic>
#include <string>
#include <thread>
#include <utility>

namespace tarvik::tests {

inline const std::atomic<bool> Never = false;

/// The class of the failure and its text; both empty after success.
struct Outcome {
    std::string failure, text;
};

template <class Call>
Outcome outcomeOf(Call&& call)
{
    try {
        call();
        return {};
    } catch (const std::exception& error) {
        return {morvend::exceptionClass(error), error.what()};
    }
}

/// Runs call(flag) on a thread; the flag is set by cancel(), at the latest when this object goes.
class Running {
public:
    template <class Call>
    explicit Running(Call call)
        : _thread([this, call] {
            _outcome = outcomeOf([&] { call(_cancel); });
            _ended = true;
        })
    {}
    ~Running() { end(); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void cancel() { _cancel = true; }
    bool ended() const { return _ended; }
    /// Cancels, and says how the call ended.
    Outcome end()
    {
        cancel();
        return wait();
    }
    Outcome wait()
    {
        if (_thread.joinable())
            _thread.join();
        return _outcome;
    }

private:
    std::atomic<bool> _cancel = false, _ended = false;
    Outcome _outcome;
    std::thread _thread;
};

}  // namespace tarvik::tests
