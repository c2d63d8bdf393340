// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series over the stream: complete and in order, spoilt, cut off, cancelled.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoStream.h"
#include "tests/imagelib/control/Calls.h"
#include "tests/support/SimulatedDetector.h"

#include "simulator/Frames.h"

#include <gmock/gmock.h>

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double Long = 60;

class Stream : public testing::Test {
protected:
    Stream()
    {
        stream.setEnabled(true, Never);
        detector.setFrameTime(0.001, Never);
    }
    void takeSeries(int images)
    {
        detector.setNImages(images, Never);
        detector.arm(Never);
        detector.trigger(Never);
    }
    /// The numbers of the frames up to the end; what failed is -1.
    std::vector<int> framesToEnd()
    {
        std::vector<int> frames;
        for (;;) {
            try {
                const MStreamObject object = stream.pop(Long, Never);
                if (object.type() == MStreamObject::End)
                    return frames;
                if (object.type() == MStreamObject::Frame)
                    frames.push_back(object.data().imageId());
            } catch (const morvend::MRuntimeException& error) {
                EXPECT_THAT(error.what(), HasSubstr("Packet: "));
                frames.push_back(-1);
            }
        }
    }

    SimulatedDetector simulated{{200, 160}};
    MHalvoDetector detector{SimulatedDetector::Host, simulated.port()};
    MHalvoStream stream{SimulatedDetector::Host, simulated.port()};
};

TEST_F(Stream, BringsStartFramesAndEnd)
{
    EXPECT_EQ(stream.version(), "1");
    stream.setHeaderDetail("all", Never);
    takeSeries(10);
    const MStreamObject start = stream.pop(Long, Never);
    ASSERT_EQ(start.type(), 0);
    EXPECT_EQ(start.config().seriesId(), 1);
    EXPECT_EQ(start.config().images(), 10);
    const auto* node = start.config().config().find("/entry/instrument/detector/frame_time");
    ASSERT_TRUE(node);
    EXPECT_EQ(std::get<double>(node->value), 0.001);
    EXPECT_EQ(std::get<std::string>(node->attributes.at("units")), "s");
    EXPECT_EQ(start.config().pixelMask().width(), 200);
    EXPECT_EQ(outcomeOf([&] { start.data(); }).failure, "MRuntimeException");

    tarvik::simulator::Frames frames({200, 160});
    for (int i = 0; i < 10; ++i) {
        const MStreamObject frame = stream.pop(Long, Never);
        ASSERT_EQ(frame.type(), 1);
        EXPECT_EQ(frame.data().imageId(), i);
        EXPECT_EQ(frame.data().data().size(), 200u * 160u);
        EXPECT_TRUE(samePixels(frame.data().image(), frames.pixels(i)));
    }
    const MStreamObject end = stream.pop(Long, Never);
    ASSERT_EQ(end.type(), 2);
    EXPECT_EQ(end.end().frames, 10);
    EXPECT_EQ(outcomeOf([&] { stream.pop(0.01, Never); }).failure, "MTimeoutException");
}

TEST_F(Stream, StartsWithWhatWasAskedFor)
{
    for (const auto& [detail, config, mask] :
         {std::tuple{"none", false, false}, {"basic", true, false}, {"all", true, true}}) {
        stream.setHeaderDetail(detail, Never);
        takeSeries(1);
        const MStreamObject start = stream.pop(Long, Never);
        EXPECT_EQ(!start.config().config().empty(), config);
        EXPECT_EQ(!start.config().pixelMask().empty(), mask);
        framesToEnd();
    }
}

TEST_F(Stream, AnAbortedSeriesHasAnEnd)
{
    detector.setNImages(1'000'000, Never);
    detector.arm(Never);
    Running trigger([this](const std::atomic<bool>& cancel) { detector.trigger(cancel); });
    EXPECT_EQ(stream.pop(Long, Never).type(), 0);
    EXPECT_EQ(stream.pop(Long, Never).type(), 1);
    MHalvoDetector(SimulatedDetector::Host, simulated.port()).abort(Never);
    EXPECT_EQ(trigger.wait().failure, "");
    framesToEnd();  // ends
}

TEST_F(Stream, FramesThatLieAreLeftOutAndTheOthersArrive)
{
    for (const char* fault : {"wrong-size", "huge-size", "wrong-bytes", "wrong-compression",
                              "bad-pixels", "bad-head", "bomb", "garbage", "parts"}) {
        SCOPED_TRACE(fault);
        simulated.fault("STREAM frame skip=1 times=1 " + std::string(fault));
        takeSeries(4);
        EXPECT_THAT(framesToEnd(), ElementsAre(0, -1, 2, 3));
    }
}

TEST_F(Stream, LostFramesLeaveAGap)
{
    simulated.fault("STREAM frame skip=1 times=2 lose");
    takeSeries(5);
    EXPECT_THAT(framesToEnd(), ElementsAre(0, 3, 4));
}

TEST_F(Stream, GoesOnWhenTheUnitComesBack)
{
    takeSeries(2);
    EXPECT_THAT(framesToEnd(), ElementsAre(0, 1));
    simulated.vanish(300);
    ASSERT_TRUE(waitFor([&] { return outcomeOf([&] { detector.abort(Never); }).failure.empty(); }));
    takeSeries(3);
    EXPECT_THAT(framesToEnd(), ElementsAre(0, 1, 2));
}

TEST_F(Stream, EndsByTheFlagWhereverItWaits)
{
    for (const char* fault : {"", "* * hang", "* * drop"}) {
        SCOPED_TRACE(fault);
        simulated.heal();
        MHalvoStream other(SimulatedDetector::Host, simulated.port());
        simulated.fault("GET */port times=1 delay 0");
        if (*fault) {
            simulated.heal();
            simulated.fault(fault);
        }
        const int struck = simulated.struck();
        Running running([&](const std::atomic<bool>& cancel) { other.pop(Long, cancel); });
        ASSERT_TRUE(waitFor([&] { return simulated.struck() > struck; }));
        EXPECT_EQ(running.end().failure, "MTerminateException");
    }
}

TEST_F(Stream, AUnitThatIsGoneIsATimeoutWithItsReason)
{
    MHalvoStream nowhere(SimulatedDetector::Host, 1);
    const Outcome outcome = outcomeOf([&] { nowhere.pop(0.01, Never); });
    EXPECT_EQ(outcome.failure, "MTimeoutException");
    EXPECT_THAT(outcome.text, HasSubstr("Nobody answers there"));
    EXPECT_EQ(outcomeOf([&] { nowhere.version(); }).failure, "MHttpException");
}

}  // namespace
