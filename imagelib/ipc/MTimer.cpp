// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MTimer: one waiting thread, made at the first start.
#include "imagelib/ipc/MTimer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace morvend::imglib {

namespace {

using Clock = std::chrono::steady_clock;

/// The point in time `seconds` from now; far ones are held at thirty years, within the clock's
/// range.
Clock::time_point deadlineIn(double seconds)
{
    constexpr double never = 1e9;
    const double held = std::isnan(seconds) ? 0.0 : std::clamp(seconds, 0.0, never);
    return Clock::now() +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(held));
}

}  // namespace

/// Shared with the thread, so that it outlives a timer destroyed by its own function.
struct MTimer::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool armed = false;
    bool running = false;  // the function is being called
    int waiters = 0;       // wait for that call to end
    bool ended = false;
    Clock::time_point deadline;
    std::function<void()> onTimeout;
    std::thread thread;

    bool onOwnThread() const { return thread.get_id() == std::this_thread::get_id(); }
    std::function<void()> disarm(std::unique_lock<std::mutex>& lock);
    void loop();
};

/// Takes the function out, and waits for a call of it to end unless the caller runs within it.
std::function<void()> MTimer::State::disarm(std::unique_lock<std::mutex>& lock)
{
    armed = false;
    changed.notify_all();
    if (!onOwnThread()) {
        ++waiters;
        changed.wait(lock, [this] { return !running; });
        --waiters;
    }
    return std::exchange(onTimeout, nullptr);
}

void MTimer::State::loop()
{
    std::unique_lock lock(mutex);
    while (!ended) {
        if (!armed) {
            changed.wait(lock);
        } else if (Clock::now() < deadline) {
            changed.wait_until(lock, deadline);
        } else {
            armed = false;
            running = true;
            {
                const std::function<void()> call = std::exchange(onTimeout, nullptr);
                lock.unlock();
                if (call)
                    call();
                // What the function holds is released here, before others see the call as ended.
            }
            lock.lock();
            running = false;
            // A waiting stop() wins, even if the function has restarted the timer.
            armed = armed && waiters == 0;
            changed.notify_all();
        }
    }
}

MTimer::MTimer()
    : _state(std::make_shared<State>())
{}

MTimer::~MTimer()
{
    std::unique_lock lock(_state->mutex);
    const std::function<void()> dropped = _state->disarm(lock);
    _state->ended = true;
    _state->changed.notify_all();
    std::thread thread = std::move(_state->thread);
    lock.unlock();
    if (thread.get_id() == std::this_thread::get_id())
        thread.detach();
    else if (thread.joinable())
        thread.join();
}

void MTimer::start(double seconds, const std::function<void()>& onTimeout)
{
    const Clock::time_point deadline = deadlineIn(seconds);
    std::unique_lock lock(_state->mutex);
    const std::function<void()> dropped = _state->disarm(lock);
    _state->onTimeout = onTimeout;
    _state->deadline = deadline;
    _state->armed = true;
    if (!_state->thread.joinable())
        _state->thread = std::thread([state = _state] { state->loop(); });
    _state->changed.notify_all();
}

void MTimer::stop()
{
    std::unique_lock lock(_state->mutex);
    const std::function<void()> dropped = _state->disarm(lock);
}

}  // namespace morvend::imglib
