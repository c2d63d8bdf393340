// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of the monitor: order, buffer, header, and a unit that spoils them.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoMonitor.h"
#include "tests/imagelib/control/Calls.h"
#include "tests/support/SimulatedDetector.h"

#include "simulator/Frames.h"

#include <gmock/gmock.h>

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

namespace {

constexpr int LongMs = 60'000;

class Monitor : public testing::Test {
protected:
    Monitor()
    {
        monitor.setEnabled(true, Never);
        monitor.setBufferSize(100, Never);
        monitor.clear(Never);
        detector.setFrameTime(0.001, Never);
    }
    void takeSeries(int images)
    {
        detector.setNImages(images, Never);
        detector.arm(Never);
        detector.trigger(Never);
    }

    SimulatedDetector simulated;
    MHalvoDetector detector{SimulatedDetector::Host, simulated.port()};
    MHalvoMonitor monitor{SimulatedDetector::Host, simulated.port()};
};

TEST_F(Monitor, GivesEachPictureOnceAndInOrder)
{
    takeSeries(3);
    tarvik::simulator::Frames frames({96, 80});
    for (int i = 0; i < 3; ++i) {
        const auto [image, series, frame] = monitor.nextAll(LongMs, Never);
        EXPECT_EQ(series, 1);
        EXPECT_EQ(frame, i);
        EXPECT_TRUE(samePixels(image, frames.pixels(i)));
        EXPECT_FLOAT_EQ(*image.optionalData().frame_time(), 0.001F);
        EXPECT_FLOAT_EQ(*image.optionalData().wavelength(), 12398.42F / 8047.8F);
        EXPECT_EQ(*image.optionalData().detector_number(), "SIM-0001");
    }
    const Outcome none = outcomeOf([&] { monitor.nextAll(1, Never); });
    EXPECT_EQ(none.failure, "MTimeoutException");
}

TEST_F(Monitor, GivesTheLatestPictureOnce)
{
    takeSeries(5);
    tarvik::simulator::Frames frames({96, 80});
    EXPECT_TRUE(samePixels(monitor.monitor(LongMs, Never), frames.pixels(4)));
    EXPECT_EQ(outcomeOf([&] { monitor.monitor(1, Never); }).failure, "MTimeoutException");
    // It took nothing out of the buffer.
    EXPECT_EQ(std::get<2>(monitor.nextAll(LongMs, Never)), 0);
}

TEST_F(Monitor, KeepsTheNewestWhenTheBufferIsFull)
{
    monitor.setBufferSize(2, Never);
    takeSeries(5);
    EXPECT_EQ(std::get<2>(monitor.nextAll(LongMs, Never)), 3);
    EXPECT_EQ(monitor.dropped(Never), 3);
}

TEST_F(Monitor, WaitsForAPictureAndEndsByTheFlag)
{
    for (const bool latest : {false, true}) {
        simulated.fault("GET */pictures/* times=1 delay 0");  // to see the request arrive
        const int struck = simulated.struck();
        Running running([&](const std::atomic<bool>& cancel) {
            if (latest)
                monitor.monitor(LongMs, cancel);
            else
                monitor.nextAll(LongMs, cancel);
        });
        ASSERT_TRUE(waitFor([&] { return simulated.struck() > struck; }));
        EXPECT_FALSE(running.ended());
        const Outcome outcome = running.end();
        EXPECT_EQ(outcome.failure, "MRuntimeException");
        EXPECT_THAT(outcome.text, HasSubstr("Cancelled"));
    }
}

TEST_F(Monitor, SurvivesABreakOfTheNetwork)
{
    takeSeries(1);
    for (const char* fault : {"drop", "reset", "status 503", "nonsense", "vanish 100"}) {
        SCOPED_TRACE(fault);
        const bool body = std::string(fault) == "nonsense";
        simulated.fault("GET */next times=1 " + std::string(fault));
        const Outcome outcome = outcomeOf([&] { monitor.nextAll(LongMs, Never); });
        EXPECT_EQ(outcome.failure, body ? "MRuntimeException" : "");
        if (!body)
            takeSeries(1);
    }
}

TEST_F(Monitor, SaysWhyNothingCame)
{
    simulated.fault("GET */pictures/* status 500");
    const Outcome next = outcomeOf([&] { monitor.nextAll(300, Never); });
    EXPECT_EQ(next.failure, "MTimeoutException");
    EXPECT_THAT(next.text, HasSubstr("status 500"));
    const Outcome latest = outcomeOf([&] { monitor.monitor(1, Never); });
    EXPECT_EQ(latest.failure, "MHttpException");
}

TEST_F(Monitor, RefusesPicturesThatLie)
{
    takeSeries(1);
    for (const auto& [fault, text] : {std::pair{"wrong-size", ""},
                                      {"huge-size", "are the most"},
                                      {"wrong-bytes", "announces"},
                                      {"bomb", "levels"},
                                      {"bad-head", "a head of"},
                                      {"garbage", ""}}) {
        SCOPED_TRACE(fault);
        simulated.heal();
        simulated.fault("GET */pictures/* times=1 " + std::string(fault));
        const Outcome outcome = outcomeOf([&] { monitor.monitor(1, Never); });
        const bool garbage = std::string(fault) == "garbage";  // of HTTP itself
        EXPECT_EQ(outcome.failure, garbage ? "MHttpException" : "MRuntimeException");
        EXPECT_THAT(outcome.text, HasSubstr(text));
    }
    EXPECT_FALSE(monitor.monitor(LongMs, Never).empty());
}

}  // namespace
