// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The watchdog: what it calls, when, and that nothing waits for ever.
#include "imagelib/ipc/MTimer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

using morvend::imglib::MTimer;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto patience = 20s;

TEST(Timer, CallsOnceFromAnotherThreadAfterItsTime)
{
    std::promise<std::thread::id> caller;
    std::atomic<int> calls = 0;
    const auto begin = Clock::now();
    MTimer timer;
    timer.start(0.05, [&] {
        if (++calls == 1)
            caller.set_value(std::this_thread::get_id());
    });
    auto called = caller.get_future();
    ASSERT_EQ(called.wait_for(patience), std::future_status::ready);
    EXPECT_GE(Clock::now() - begin, 50ms);
    EXPECT_NE(called.get(), std::this_thread::get_id());
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(calls, 1);
}

TEST(Timer, AStoppedOneCallsNothing)
{
    std::atomic<int> calls = 0;
    MTimer timer;
    timer.stop();
    timer.start(0.03, [&] { ++calls; });
    timer.stop();
    timer.stop();
    {
        MTimer shortLived;
        shortLived.start(0.03, [&] { ++calls; });
    }
    std::this_thread::sleep_for(120ms);
    EXPECT_EQ(calls, 0);
}

TEST(Timer, StartsAnewInsteadOfTheOldTime)
{
    std::atomic<int> first = 0;
    std::promise<void> second;
    MTimer timer;
    timer.start(0.03, [&] { ++first; });
    timer.start(0.08, [&] { second.set_value(); });
    ASSERT_EQ(second.get_future().wait_for(patience), std::future_status::ready);
    EXPECT_EQ(first, 0);
    for (int i = 0; i < 3; ++i) {
        std::promise<void> again;
        timer.start(0.0, [&] { again.set_value(); });
        ASSERT_EQ(again.get_future().wait_for(patience), std::future_status::ready);
    }
}

TEST(Timer, StopWaitsForARunningCall)
{
    for (const bool destroy : {false, true}) {
        std::promise<void> entered;
        std::atomic<bool> left = false;
        auto timer = std::make_unique<MTimer>();
        timer->start(0.0, [&] {
            entered.set_value();
            std::this_thread::sleep_for(50ms);
            left = true;
        });
        entered.get_future().wait();
        if (destroy)
            timer.reset();
        else
            timer->stop();
        EXPECT_TRUE(left);
    }
}

TEST(Timer, ItsFunctionMayStopStartAndDestroyIt)
{
    std::promise<void> restarted;
    MTimer timer;
    timer.start(0.0, [&] {
        timer.stop();
        timer.start(0.0, [&] { restarted.set_value(); });
    });
    ASSERT_EQ(restarted.get_future().wait_for(patience), std::future_status::ready);

    std::promise<void> destroyed;
    auto* owned = new MTimer;
    owned->start(0.0, [&, owned] {
        delete owned;
        destroyed.set_value();
    });
    ASSERT_EQ(destroyed.get_future().wait_for(patience), std::future_status::ready);
}

TEST(Timer, StopBeatsARestartFromTheRunningFunction)
{
    std::promise<void> entered;
    std::atomic<int> late = 0;
    MTimer timer;
    timer.start(0.0, [&] {
        entered.set_value();
        std::this_thread::sleep_for(50ms);
        timer.start(0.0, [&] { ++late; });
    });
    entered.get_future().wait();
    timer.stop();
    std::this_thread::sleep_for(60ms);
    EXPECT_EQ(late, 0);
}

TEST(Timer, StrangeTimes)
{
    for (const double seconds : {-1.0, std::numeric_limits<double>::quiet_NaN(),
                                 -std::numeric_limits<double>::infinity()}) {
        std::promise<void> called;
        MTimer timer;
        timer.start(seconds, [&] { called.set_value(); });
        EXPECT_EQ(called.get_future().wait_for(patience), std::future_status::ready);
    }
    std::atomic<int> calls = 0;
    for (const double seconds : {1e9, 1e300, std::numeric_limits<double>::infinity()}) {
        MTimer timer;
        timer.start(seconds, [&] { ++calls; });
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(calls, 0);
    MTimer empty;
    empty.start(0.0, nullptr);
    std::this_thread::sleep_for(10ms);
}

TEST(Timer, ReleasesWhatItsFunctionHolds)
{
    const auto held = std::make_shared<int>(1);
    MTimer timer;
    timer.start(1000, [held] {});
    EXPECT_GT(held.use_count(), 1);
    timer.stop();
    EXPECT_EQ(held.use_count(), 1);
    std::promise<void> called;
    timer.start(0, [held, &called] { called.set_value(); });
    called.get_future().wait();
    timer.stop();
    EXPECT_EQ(held.use_count(), 1);
}

/// A request loop as the detector's: start, work for about as long as the time allowed, stop. After
/// a stop the flag must not change any more.
TEST(Timer, RacesWithRequestsLeaveNoLateCall)
{
    std::vector<std::jthread> requests;
    for (int worker = 0; worker < 4; ++worker)
        requests.emplace_back([worker] {
            MTimer timer;
            for (int i = 0; i < 300; ++i) {
                bool cancel = false;  // not atomic: only ordered by the timer
                timer.start(1e-4, [&] { cancel = true; });
                std::this_thread::sleep_for(std::chrono::microseconds(60 + (i * 7 + worker) % 100));
                timer.stop();
                const bool seen = cancel;
                std::this_thread::yield();
                ASSERT_EQ(cancel, seen);
            }
        });
}

}  // namespace
