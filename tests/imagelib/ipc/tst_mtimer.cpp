// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The watchdog: what it calls, when, and that nothing waits for ever.
#include "imagelib/ipc/MTimer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

using morvend::imglib::MTimer;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A function for a timer, and how often it was called.
struct Calls {
    std::atomic<int> count = 0;
    std::function<void()> function = [this] { ++count; };
    /// Have so many come?
    bool reach(int wanted) const
    {
        const auto end = Clock::now() + 120s;
        while (count < wanted && Clock::now() < end)
            std::this_thread::sleep_for(1ms);
        return count >= wanted;
    }
};

TEST(Timer, CallsOnceFromAnotherThreadAfterItsTime)
{
    std::thread::id caller;
    Calls calls;
    const auto begin = Clock::now();
    MTimer timer;
    timer.start(0.03, [&] {
        caller = std::this_thread::get_id();
        ++calls.count;
    });
    ASSERT_TRUE(calls.reach(1));
    EXPECT_GE(Clock::now() - begin, 30ms);
    EXPECT_NE(caller, std::this_thread::get_id());
    std::this_thread::sleep_for(60ms);
    EXPECT_EQ(calls.count, 1);
}

TEST(Timer, CallsNothingAfterAStopItsEndOrANewStart)
{
    // How many calls a slow machine lets through before a stop is no matter.
    Calls stopped, second;
    MTimer timer, endless;
    MTimer().start(0.03, stopped.function);
    timer.start(0.03, stopped.function);
    timer.stop();
    timer.start(0.03, stopped.function);
    timer.start(0.08, second.function);
    const int before = stopped.count;
    endless.start(1e300, stopped.function);
    ASSERT_TRUE(second.reach(1));
    EXPECT_EQ(stopped.count, before);
    timer.start(std::numeric_limits<double>::quiet_NaN(), second.function);
    EXPECT_TRUE(second.reach(2)) << "at once";
}

TEST(Timer, StopAndEndWaitForARunningCallAndBeatItsRestart)
{
    for (const bool destroy : {false, true}) {
        Calls entered, late;
        std::atomic<bool> left = false;
        auto timer = std::make_unique<MTimer>();
        timer->start(0.0, [&, running = timer.get()] {
            ++entered.count;
            std::this_thread::sleep_for(30ms);
            running->start(0.0, late.function);
            left = true;
        });
        ASSERT_TRUE(entered.reach(1));
        if (destroy)
            timer.reset();
        else
            timer->stop();
        EXPECT_TRUE(left);
        std::this_thread::sleep_for(20ms);
        EXPECT_EQ(late.count, 0);
    }
}

TEST(Timer, ItsFunctionMayStopStartAndDestroyIt)
{
    Calls restarted, destroyed;
    MTimer timer;
    timer.start(0.0, [&] {
        timer.stop();
        timer.start(0.0, restarted.function);
    });
    EXPECT_TRUE(restarted.reach(1));
    auto* owned = new MTimer;
    owned->start(0.0, [&, owned] {
        delete owned;
        ++destroyed.count;
    });
    EXPECT_TRUE(destroyed.reach(1));
}

}  // namespace
