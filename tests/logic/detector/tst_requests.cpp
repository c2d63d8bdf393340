// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every request to a detector that is well, refuses, fails or says nothing.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoFileWriter.h"
#include "logic/detector/FrameRelay.h"
#include "logic/detector/HalvoAsync.h"
#include "tests/support/SimulatedDetector.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <thread>

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::atomic<bool> Never = false;

/// The fields of a state that are known.
std::string fields(const HalvoState& s)
{
    std::string names;
    const auto add = [&](const auto& field, const char* name) {
        if (field)
            names += std::string(" ") + name;
    };
    add(s.detectorDescription, "description");
    add(s.detectorNumber, "number");
    add(s.frameTime, "frame");
    add(s.countTime, "count");
    add(s.photonEnergy, "photon");
    add(s.thresholdEnergy, "threshold");
    add(s.triggerMode, "trigger");
    add(s.nImages, "images");
    add(s.flatfieldCorrectionApplied, "flatfield");
    add(s.pixelMaskApplied, "mask");
    if (s.state)
        names += ' ' + HalvoState::label(*s.state).toStdString();
    return names;
}
const std::string All = " frame count photon threshold trigger images flatfield mask";

/// A worker whose slots are called in the test's own thread.
class Requests : public testing::Test {
protected:
    Requests()
    {
        using A = HalvoAsync;
        const auto add = [this](const std::string& event) { events.push_back(event); };
        const auto ended = [add](const char* what) {
            return [add, what](bool good, const QString& text) {
                add(what + std::string(good ? " good" : " bad") + text.toStdString());
            };
        };
        QObject::connect(
            &async, &A::error, &context,
            [add](const QString& text) { add("error " + text.toStdString()); },
            Qt::DirectConnection);
        QObject::connect(
            &async, &A::finished, &context,
            [add](unsigned ticketId) { add("finished " + std::to_string(ticketId)); },
            Qt::DirectConnection);
        QObject::connect(
            &async, &A::stateSignal, &context,
            [add](bool good, const HalvoState& s) {
                add((good ? "state" : "no state") + fields(s));
            },
            Qt::DirectConnection);
        QObject::connect(
            &async, &A::configSignal, &context,
            [this, add](bool good, const HalvoState& s) {
                answer = s;
                add((good ? "config" : "no config") + fields(s));
            },
            Qt::DirectConnection);
        QObject::connect(&async, &A::finishedInitialize, &context, ended("initialized"),
                         Qt::DirectConnection);
        QObject::connect(&async, &A::finishedSeries, &context, ended("series"),
                         Qt::DirectConnection);
        QObject::connect(&async, &A::finishedAbort, &context, ended("aborted"),
                         Qt::DirectConnection);
        QObject::connect(
            &async, &A::startFileWriter, &context,
            [add](const QString&, int images) { add("write " + std::to_string(images)); },
            Qt::DirectConnection);
        const auto receive = [add](const char* source) {
            return [add, source](const QString&, int, double timeout) {
                add(source + (" " + QString::number(timeout)).toStdString());
            };
        };
        QObject::connect(&async, &A::startStream, &context, receive("stream"),
                         Qt::DirectConnection);
        QObject::connect(&async, &A::startMonitor, &context, receive("monitor"),
                         Qt::DirectConnection);
    }
    AsyncTicket ticket(HalvoMode mode = HalvoMode::Automatic)
    {
        return {SimulatedDetector::Host, unit.port(), mode, ++id};
    }
    std::string finished() const { return "finished " + std::to_string(id); }
    std::vector<std::string> take() { return std::exchange(events, {}); }

    SimulatedDetector unit;
    MHalvoDetector detector{SimulatedDetector::Host, unit.port()};
    std::shared_ptr<SeriesMeter> meter = std::make_shared<SeriesMeter>();
    FrameRelay relay{meter};
    HalvoAsync async{meter, &relay};
    QObject context;
    std::vector<std::string> events;
    HalvoState answer;
    std::uint32_t id = 0;
};

struct Row {
    const char* prefix;
    std::function<void(HalvoAsync&, const AsyncTicket&)> call;
    const char* answered;
};

template <class Value, class Argument>
auto with(void (HalvoAsync::*slot)(Value, const AsyncTicket&), Argument value)
{
    return [=](HalvoAsync& async, const AsyncTicket& ticket) { (async.*slot)(value, ticket); };
}

const std::vector<Row>& rows()
{
    using A = HalvoAsync;
    static const std::vector<Row> all = {
        {"Error setting number of images: ", with(&A::setNImages, 3), " images"},
        {"Error requesting number of images: ", &A::nImages, " images"},
        {"Error setting frame time: ", with(&A::setFrameTime, 0.2), " frame count"},
        {"Error requesting image time: ", &A::frameTime, " frame"},
        {"Error setting count time: ", with(&A::setCountTime, 0.01), " frame count"},
        {"Error requesting image time: ", &A::countTime, " count"},
        {"Error setting photon energy: ", with(&A::setPhotonEnergy, 12000.), " photon threshold"},
        {"Error requesting photon energy: ", &A::photonEnergy, " photon"},
        {"Error setting threshold energy: ", with(&A::setThresholdEnergy, 5000.), " threshold"},
        {"Error requesting threshold energy: ", &A::thresholdEnergy, " threshold"},
        {"Error setting element: ", with(&A::setElement, "Fe"), " photon threshold"},
        {"Error setting trigger mode: ", with(&A::setTriggerMode, "exts"), " frame count trigger"},
        {"Error requesting trigger mode: ", &A::triggerMode, " trigger"},
        {"Error setting flatfield correction applied: ",
         with(&A::setFlatfieldCorrectionApplied, false), " flatfield"},
        {"Error requesting flatfield correction applied: ", &A::flatfieldCorrectionApplied,
         " flatfield"},
        {"Error setting pixel mask applied: ", with(&A::setPixelMaskApplied, false), " mask"},
        {"Error requesting pixel mask applied: ", &A::pixelMaskApplied, " mask"}};
    return all;
}

TEST_F(Requests, AnswerWithWhatTheyReadBackOrSayWhatFailed)
{
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.prefix);
        row.call(async, ticket());
        EXPECT_THAT(take(), ElementsAre(std::string("config") + row.answered, finished()));
        unit.fault("* * status 500");
        row.call(async, ticket());
        EXPECT_THAT(take(), ElementsAre("no config", StartsWith(std::string("error ") + row.prefix),
                                        finished()));
        unit.heal();
    }
    EXPECT_EQ(std::get<0>(detector.nImages(Never)), 3);
    EXPECT_EQ(std::get<0>(detector.thresholdEnergy(Never)), 6403.8 / 2) << "that of iron";
    EXPECT_EQ(std::get<0>(detector.triggerMode(Never)), "exts");
    EXPECT_FALSE(detector.pixelMaskApplied(Never));
}

TEST_F(Requests, CountTheFrameOutInAutomaticMode)
{
    for (const auto& [mode, frame, count] : {std::tuple{HalvoMode::Automatic, 0.5, 0.49998},
                                             {HalvoMode::Automatic, 0.01, 0.00998},
                                             {HalvoMode::Manual, 0.5, 0.00998}}) {
        async.setFrameTime(frame, ticket(mode));
        EXPECT_DOUBLE_EQ(answer.frameTime->value, frame);
        EXPECT_DOUBLE_EQ(answer.countTime->value, count);
    }
}

TEST_F(Requests, RefuseWhatTheDetectorWouldNotTake)
{
    unit.fault("PUT * delay 0");
    for (const auto& [call, text] : std::initializer_list<
             std::pair<std::function<void(HalvoAsync&, const AsyncTicket&)>, const char*>>{
             {with(&HalvoAsync::setNImages, 0),
              "error Error setting number of images: Not within range [1,1000000]\n"},
             {with(&HalvoAsync::setFrameTime, NAN),
              "error Error setting frame time: Not within range [0.0005,3600]\n"},
             {with(&HalvoAsync::setElement, "Xx"),
              "error Error setting element: Not within [, Ag, Co, Cr, Cu, Fe, Ga, Mn, Mo, Ni, Ti, "
              "Zn]"},
             {with(&HalvoAsync::setTriggerMode, "x"),
              "error Error setting trigger mode: Not within [exte, exts, inte, ints]"}}) {
        call(async, ticket());
        EXPECT_THAT(take(), ElementsAre("no config", text, finished()));
    }
    EXPECT_EQ(unit.struck(), 0) << "nothing was written";
}

TEST_F(Requests, AreTriedFiveTimes)
{
    unit.fault("* * status 500");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    async.nImages(ticket());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Retrying\nRetrying\nRetrying\nRetrying\n");
    const std::string attempt = "Request at \"StateQueries.cpp\":[0-9]+ timed out after 1 seconds\n"
                                "Warning: Network may be slow or unstable\n";
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::MatchesRegex("(" + attempt + "){5}Aborting after 4 trials\n[^\n]*\n"));
    EXPECT_EQ(unit.struck(), 5);
}

TEST_F(Requests, AreTriedAgainWhenNobodyAnswersInTime)
{
    unit.fault("GET */nimages times=1 hang");
    async.nImages(ticket());
    EXPECT_THAT(take(), ElementsAre("config images", finished()));
}

TEST_F(Requests, OfStateTellWhatTheyRead)
{
    testing::internal::CaptureStdout();
    async.state(ticket());
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                EndsWith("Successfully read description string Simulated detector 96 x 80\n"
                         "Successfully read detector number SIM-0001\n"
                         "Successfully read detector state idle\n"
                         "Successfully read detector error state 0\n"));
    EXPECT_THAT(take(), ElementsAre("state description number Ready", finished()));
    unit.fault("* * reset");
    async.state(ticket());
    EXPECT_THAT(take(),
                ElementsAre("error Detector not connected", "state Not Available", finished()));
}

TEST_F(Requests, InitialiseADetectorThatNeedsIt)
{
    async.initDetector(ticket());
    EXPECT_THAT(take(), ElementsAre("initialized good", "state description number Ready",
                                    "config" + All, finished()));
    SimulatedDetector raw({96, 80}, false);
    async.initDetector({SimulatedDetector::Host, raw.port(), HalvoMode::Automatic, ++id});
    EXPECT_THAT(take(), ElementsAre("initialized good", "state description number Ready",
                                    "config" + All, finished()));
    unit.fault("* * status 500");
    async.initDetector(ticket());
    EXPECT_THAT(take(),
                ElementsAre("error Detector not connected", "state Not Available", "no config",
                            "initialized badDetector may not be connected", finished()));
}

/// All requests, with those that are no parameters.
std::vector<Row> allRequests(const std::string& file)
{
    using A = HalvoAsync;
    std::vector<Row> all = rows();
    all.push_back({"state", &A::state, ""});
    all.push_back({"initialise", &A::initDetector, ""});
    all.push_back({"abort", &A::abortSeries, ""});
    all.push_back({"series",
                   [file](A& async, const AsyncTicket& ticket) {
                       async.startSeries(ticket, {}, QString::fromStdString(file));
                   },
                   ""});
    return all;
}

TEST_F(Requests, EndWhateverTheDetectorDoes)
{
    const TempFolder folder;
    for (const char* fault :
         {"delay 1", "drop", "reset", "status 400", "status 302", "garbage", "nonsense", "wrong",
          "bomb", "long", "huge", "endless", "endless-head", "truncate", "trickle 1", "vanish 1"})
        for (const Row& row : allRequests(folder / "x_master.h5")) {
            SCOPED_TRACE(std::string(fault) + ": " + row.prefix);
            unit.heal();
            ASSERT_TRUE(waitFor([&] {
                try {
                    detector.abort(Never);
                    return true;
                } catch (const morvend::MException&) {
                    return false;
                }
            }));
            unit.fault(std::string("* * times=12 ") + fault);
            take();
            row.call(async, ticket());
            EXPECT_EQ(std::count(events.begin(), events.end(), finished()), 1);
            EXPECT_EQ(events.back(), finished());
        }
}

TEST_F(Requests, EndByAnAbortWhenTheDetectorSaysNothing)
{
    const TempFolder folder;
    for (const Row& row : allRequests(folder / "x_master.h5")) {
        SCOPED_TRACE(row.prefix);
        unit.fault("* * times=1 hang");
        const int before = unit.struck();
        const AsyncTicket issued = ticket();
        take();
        std::thread request([&] { row.call(async, issued); });
        while (unit.struck() == before)
            std::this_thread::yield();
        async.abort(issued.id);
        testing::internal::CaptureStdout();
        request.join();
        const std::string printed = testing::internal::GetCapturedStdout();
        // A series asks for the state afterwards, which may be tried again on a busy machine.
        if (row.prefix != std::string("series")) {
            EXPECT_THAT(printed, Not(HasSubstr("Retrying")));
        }
        EXPECT_EQ(events.back(), finished());
        if (row.prefix == std::string("state")) {
            EXPECT_EQ(events.front(), "state") << "nothing is said of the detector";
        }
        unit.heal();
        // Issued before the abort: left out. Issued after it: done.
        unit.fault("* * delay 0");
        const int asked = unit.struck();
        take();
        row.call(async, issued);
        EXPECT_EQ(unit.struck(), asked);
        unit.heal();
        EXPECT_THAT(take(), testing::AllOf(testing::Not(testing::Contains(StartsWith("error"))),
                                           testing::Contains(finished())));
    }
    async.nImages(ticket());
    EXPECT_THAT(take(), ElementsAre("config images", finished()));
    async.end();
    async.nImages(ticket());
    EXPECT_THAT(take(), ElementsAre("no config", finished()));
}

TEST_F(Requests, OfASeriesSetTheDetectorByTheirMode)
{
    const TempFolder folder;
    HalvoState wanted;
    wanted.nImages = {2, 1, 10};
    wanted.frameTime = {0.01, 0.001, 1};
    wanted.photonEnergy = {10000, 5000, 20000};
    wanted.thresholdEnergy = {4000, 3000, 20000};
    wanted.triggerMode = {"exts", {}};
    const std::vector<std::string> order = {"config" + All, "write 2", "stream 10.01",
                                            "series good", "state description number Ready"};
    for (const auto& [mode, trigger, thresholds, threshold] :
         {std::tuple{HalvoMode::Automatic, "ints", false, 5000.},
          std::tuple{HalvoMode::Manual, "exts", true, 4000.}}) {
        unit.heal();
        unit.fault("PUT */threshold_energy delay 0");
        const int before = unit.struck();
        const QString file = QString::fromStdString(folder / trigger) + "_master.h5";
        testing::internal::CaptureStdout();
        async.startSeries(ticket(mode), wanted, file);
        EXPECT_THAT(
            testing::internal::GetCapturedStdout(),
            HasSubstr("Found stream version 1 on 127.0.0.1:" + std::to_string(unit.port()) + "\n"));
        auto expected = order;
        expected.push_back(finished());
        EXPECT_EQ(take(), expected);
        EXPECT_EQ(unit.struck() > before, thresholds);
        EXPECT_EQ(std::get<0>(detector.triggerMode(Never)), trigger);
        EXPECT_EQ(std::get<0>(detector.thresholdEnergy(Never)), threshold);
        EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(file.toStdString()); }));
    }
    MHalvoFileWriter writer(SimulatedDetector::Host, unit.port());
    EXPECT_TRUE(writer.enabled(Never)) << "as before";
}

TEST_F(Requests, OfASeriesUseTheMonitorWhereThereIsNoStream)
{
    const TempFolder folder;
    unit.fault("* /v1/stream/* status 404");
    testing::internal::CaptureStdout();
    async.startSeries(ticket(), {}, QString::fromStdString(folder / "x_master.h5"));
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                HasSubstr("No stream found on 127.0.0.1:" + std::to_string(unit.port()) +
                          ". Using monitor instead.\n"));
    EXPECT_THAT(take(), ElementsAre("config" + All, "write 1", "monitor 10.1", "series good",
                                    "state description number Ready", finished()));
}

}  // namespace
