// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions computed off the caller's thread: the newest wins.
#include "logic/analysis/roi/RegionWorker.h"

#include "logic/analysis/roi/RoiComputer.h"
#include "tests/support/HeldRegions.h"
#include "tests/support/Regions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>

namespace {

using morvend::imglib::MImage;
using tarvik::tests::HeldRegions;

class RegionRequests : public testing::Test {
protected:
    void ask(int width) { worker.request(image, mask, regions::box(0, 0, width, 2)); }

    const MImage image{8, 4, 5};
    const MImage mask{image, 0U};
    RoiStatistics result;
    std::atomic<int> finished = 0;
    std::counting_semaphore<> done{0};
    RegionWorker worker{[this] {
        ++finished;
        done.release();
    }};
};

TEST_F(RegionRequests, OfRequestsThatWaitTheLastAloneIsComputed)
{
    {
        const HeldRegions held;
        for (int width = 1; width <= 5; ++width)
            ask(width);
        EXPECT_TRUE(worker.pending());
        EXPECT_FALSE(worker.take(result)) << "before it has begun";
    }
    done.acquire();
    EXPECT_TRUE(worker.take(result));
    EXPECT_EQ(result.integral, 5 * 2 * 5);
    EXPECT_FALSE(worker.pending());
    EXPECT_FALSE(worker.take(result)) << "it was taken";
    EXPECT_EQ(finished, 1);
}

TEST_F(RegionRequests, ThatAreNeededAtOnceDoNotWaitForTheirTurn)
{
    const HeldRegions held;
    ask(3);
    EXPECT_TRUE(worker.wait(result));
    EXPECT_EQ(result.integral, 3 * 2 * 5);
    EXPECT_FALSE(worker.wait(result)) << "nothing is asked for";
}

TEST_F(RegionRequests, AResultThatIsSupersededIsNotHandedOut)
{
    ask(2);
    done.acquire();
    const HeldRegions held;
    ask(4);
    EXPECT_FALSE(worker.take(result)) << "that of the request before";
    worker.cancel();
    EXPECT_FALSE(worker.wait(result));
}

TEST(StoppedRegions, LookAtNoPixels)
{
    const MImage image(600, 500, 5);
    const MImage mask(image, 0U);
    std::stop_source stop;
    stop.request_stop();
    for (const StatisticsData& region :
         {regions::box(0, 0, 600, 500), regions::circle(300, 250, 200),
          regions::powder(300.5, 250, 0, 220)}) {
        RoiComputer computer;
        computer.setImage(image);
        computer.setMask(mask);
        computer.setStatisticsData(region);
        EXPECT_GT(computer.compute().integral, 0);
        computer.setStopToken(stop.get_token());
        EXPECT_EQ(computer.compute().integral, 0);
    }
}

}  // namespace
