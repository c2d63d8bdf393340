// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A control unit that does what it should: parameters, their effects on each other, states.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoFileWriter.h"
#include "tests/imagelib/control/Calls.h"
#include "tests/support/SimulatedDetector.h"

#include <gmock/gmock.h>

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::Contains;
using testing::DoubleNear;
using testing::HasSubstr;

namespace {

class Detector : public testing::Test {
protected:
    SimulatedDetector simulated;
    MHalvoDetector detector{SimulatedDetector::Host, simulated.port()};
};

TEST_F(Detector, SaysWhoItIs)
{
    EXPECT_EQ(detector.description(Never), "Simulated detector 96 x 80");
    EXPECT_EQ(detector.detectorNumber(Never), "SIM-0001");
    EXPECT_EQ(detector.status(Never), "idle");
    EXPECT_FALSE(detector.isError(Never));
}

TEST_F(Detector, AFrameTimeLimitsTheCountTime)
{
    detector.setFrameTime(0.01, Never);
    const auto [time, least, most] = detector.countTime(Never);
    EXPECT_THAT(most, DoubleNear(0.00998, 1e-9));
    EXPECT_EQ(time, most);
    EXPECT_EQ(std::get<0>(detector.frameTime(Never)), 0.01);
    detector.setCountTime(0.005, Never);
    EXPECT_EQ(std::get<0>(detector.countTime(Never)), 0.005);
}

TEST_F(Detector, AnEnergyMovesTheThreshold)
{
    detector.setPhotonEnergy(12000, Never);
    EXPECT_EQ(std::get<0>(detector.thresholdEnergy(Never)), 6000);
    EXPECT_EQ(std::get<0>(detector.element(Never)), "");
    detector.setElement("Mo", Never);
    EXPECT_EQ(std::get<0>(detector.photonEnergy(Never)), 17479.3);
    EXPECT_EQ(std::get<0>(detector.thresholdEnergy(Never)), 17479.3 / 2);
    detector.setThresholdEnergy(5000, Never);
    EXPECT_EQ(std::get<0>(detector.thresholdEnergy(Never)), 5000);
    EXPECT_THAT(std::get<1>(detector.element(Never)), Contains("Cu"));
}

TEST_F(Detector, TakesEveryOtherParameter)
{
    detector.setNImages(250, Never);
    EXPECT_EQ(detector.nImages(Never), std::tuple(250, 1, 1'000'000));
    detector.setTriggerMode("exte", Never);
    EXPECT_EQ(std::get<0>(detector.triggerMode(Never)), "exte");
    EXPECT_EQ(std::get<1>(detector.triggerMode(Never)).size(), 4u);
    detector.setFlatfieldCorrectionApplied(false, Never);
    EXPECT_FALSE(detector.flatfieldCorrectionApplied(Never));
    detector.setPixelMaskApplied(false, Never);
    EXPECT_FALSE(detector.pixelMaskApplied(Never));
    detector.setAutoSummation(true, Never);
    detector.setCalibrationType("standard", Never);
    detector.setCountrateCorrectionApplied(true, Never);
    detector.setCountrateCorrectionBunchMode("continuous", Never);
    detector.setVirtualPixelCorrectionApplied(true, Never);
    MHalvoFileWriter writer(SimulatedDetector::Host, simulated.port());
    EXPECT_TRUE(writer.enabled(Never));
    writer.setEnabled(false, Never);
    EXPECT_FALSE(writer.enabled(Never));
}

TEST_F(Detector, PassesOnWhyAValueIsRefused)
{
    const Outcome outcome = outcomeOf([&] { detector.setCountTime(99, Never); });
    EXPECT_EQ(outcome.failure, "MRuntimeException");
    EXPECT_THAT(outcome.text, HasSubstr("count_time must be between 1e-06 and 0.09998 s"));
    EXPECT_EQ(outcomeOf([&] { detector.setTriggerMode("bad\xff", Never); }).failure,
              "MRuntimeException");
    EXPECT_EQ(outcomeOf([&] { detector.trigger(Never); }).failure, "MRuntimeException");
}

TEST_F(Detector, GoesThroughASeries)
{
    detector.setNImages(3, Never);
    detector.setFrameTime(0.001, Never);
    detector.arm(Never);
    EXPECT_EQ(detector.status(Never), "ready");
    detector.trigger(Never);
    EXPECT_EQ(detector.status(Never), "idle");
}

TEST_F(Detector, AnAbortEndsTheTrigger)
{
    detector.setNImages(1'000'000, Never);
    detector.arm(Never);
    Running trigger([this](const std::atomic<bool>& cancel) { detector.trigger(cancel); });
    MHalvoDetector other(SimulatedDetector::Host, simulated.port());
    ASSERT_TRUE(waitFor([&] { return other.status(Never) == "acquire"; }));
    EXPECT_EQ(outcomeOf([&] { other.setNImages(1, Never); }).failure, "MRuntimeException");
    other.abort(Never);
    EXPECT_EQ(trigger.wait().failure, "");
    EXPECT_EQ(other.status(Never), "idle");
}

TEST(DetectorAtFirst, IsInErrorUntilItIsInitialized)
{
    SimulatedDetector simulated({96, 80}, false);
    MHalvoDetector detector(SimulatedDetector::Host, simulated.port());
    EXPECT_TRUE(detector.isError(Never));
    detector.initialize(Never);
    EXPECT_FALSE(detector.isError(Never));
    EXPECT_EQ(detector.status(Never), "idle");
}

TEST(DetectorAddress, ThatCanBeNoneIsRefusedInWords)
{
    for (const auto& [host, port] : {std::pair{"", 80},
                                     {"a/b", 80},
                                     {"user@host", 80},
                                     {"a b", 80},
                                     {"127.0.0.1", 0},
                                     {"127.0.0.1", 70000},
                                     {"a\r\nb", 80}}) {
        MHalvoDetector detector(host, port);
        const Outcome outcome = outcomeOf([&] { detector.status(Never); });
        EXPECT_EQ(outcome.failure, "MHttpException") << host;
        EXPECT_THAT(outcome.text, HasSubstr("No address"));
    }
}

TEST(DetectorAddress, WhereNobodyListensIsSaid)
{
    int port = 0;
    {
        SimulatedDetector simulated;
        port = simulated.port();
    }
    MHalvoDetector detector(SimulatedDetector::Host, port);
    const Outcome outcome = outcomeOf([&] { detector.status(Never); });
    EXPECT_EQ(outcome.failure, "MHttpException");
    EXPECT_THAT(outcome.text, HasSubstr("Nobody answers there: control unit 127.0.0.1:" +
                                        std::to_string(port) + ", GET /v1/detector/status"));
}

}  // namespace
