// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every fault of a control unit at every kind of request: how it ends, and that the unit can be
// used afterwards. Calls that end by themselves are waited for; those that wait for the unit are
// cancelled once the fault has struck.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoFileWriter.h"
#include "imagelib/control/MHalvoMonitor.h"
#include "imagelib/control/MHalvoStream.h"
#include "tests/imagelib/control/Calls.h"
#include "tests/support/SimulatedDetector.h"

#include <gmock/gmock.h>

#include <functional>

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

namespace {

using Cancel = std::atomic<bool>;

/// All handles on one unit.
struct Unit {
    explicit Unit(int port)
        : detector(SimulatedDetector::Host, port)
        , monitor(SimulatedDetector::Host, port)
        , stream(SimulatedDetector::Host, port)
        , writer(SimulatedDetector::Host, port)
    {}
    MHalvoDetector detector;
    MHalvoMonitor monitor;
    MHalvoStream stream;
    MHalvoFileWriter writer;
};

struct Call {
    const char* name;
    bool reads;  ///< something out of the answer
    std::function<void(Unit&, const Cancel&)> call;
};

/// One of each kind: every way to read and to write a value, every command, every path.
const std::vector<Call>& calls()
{
    static const std::vector<Call> all = {
        {"status", true, [](Unit& unit, const Cancel& c) { unit.detector.status(c); }},
        {"isError", true, [](Unit& unit, const Cancel& c) { unit.detector.isError(c); }},
        {"description", true, [](Unit& unit, const Cancel& c) { unit.detector.description(c); }},
        {"nImages", true, [](Unit& unit, const Cancel& c) { unit.detector.nImages(c); }},
        {"countTime", true, [](Unit& unit, const Cancel& c) { unit.detector.countTime(c); }},
        {"element", true, [](Unit& unit, const Cancel& c) { unit.detector.element(c); }},
        {"pixelMaskApplied", true,
         [](Unit& unit, const Cancel& c) { unit.detector.pixelMaskApplied(c); }},
        {"setNImages", false, [](Unit& unit, const Cancel& c) { unit.detector.setNImages(2, c); }},
        {"setFrameTime", false,
         [](Unit& unit, const Cancel& c) { unit.detector.setFrameTime(0.1, c); }},
        {"setElement", false,
         [](Unit& unit, const Cancel& c) { unit.detector.setElement("Fe", c); }},
        {"initialize", false, [](Unit& unit, const Cancel& c) { unit.detector.initialize(c); }},
        {"arm", false, [](Unit& unit, const Cancel& c) { unit.detector.arm(c); }},
        {"trigger", false, [](Unit& unit, const Cancel& c) { unit.detector.trigger(c); }},
        {"abort", false, [](Unit& unit, const Cancel& c) { unit.detector.abort(c); }},
        {"monitorEnabled", false,
         [](Unit& unit, const Cancel& c) { unit.monitor.setEnabled(true, c); }},
        {"clear", false, [](Unit& unit, const Cancel& c) { unit.monitor.clear(c); }},
        {"dropped", true, [](Unit& unit, const Cancel& c) { unit.stream.dropped(c); }},
        {"headerDetail", false,
         [](Unit& unit, const Cancel& c) { unit.stream.setHeaderDetail("all", c); }},
        {"writerEnabled", true, [](Unit& unit, const Cancel& c) { unit.writer.enabled(c); }},
    };
    return all;
}

/// Brings the unit into the state that a call needs.
void prepare(Unit& unit, const Call& call)
{
    unit.detector.abort(Never);
    if (std::string(call.name) != "trigger")
        return;
    unit.detector.setFrameTime(0.001, Never);
    unit.detector.arm(Never);
}

struct Row {
    const char* name;
    const char* fault;
    const char* failure;  ///< empty: none
    const char* text;     ///< part of what is said
};

class Faults : public testing::TestWithParam<Row> {};

TEST_P(Faults, EndEachRequestWithItsException)
{
    const Row& row = GetParam();
    SimulatedDetector simulated;
    for (const Call& call : calls()) {
        SCOPED_TRACE(call.name);
        // On a connection that is kept, a request that finds it dead is sent once more.
        Unit first(simulated.port()), unit(simulated.port());
        prepare(first, call);
        simulated.fault("* * times=1 " + std::string(row.fault));
        const Outcome outcome = outcomeOf([&] { call.call(unit, Never); });
        EXPECT_EQ(outcome.failure, row.failure);
        EXPECT_THAT(outcome.text, HasSubstr(row.text));
        EXPECT_LT(outcome.text.size(), 400u);
        simulated.heal();
        const auto healthy = outcomeOf([&] {
            waitFor(
                [&] { return outcomeOf([&] { unit.detector.status(Never); }).failure.empty(); });
            prepare(unit, call);
            call.call(unit, Never);
        });
        EXPECT_EQ(healthy.text, "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Faults,
    testing::Values(Row{"Delay", "delay 100", "", ""}, Row{"Trickle", "trickle 1", "", ""},
                    Row{"Drop", "drop", "MHttpException", "connection was lost"},
                    Row{"Reset", "reset", "MHttpException", "connection was lost"},
                    Row{"Truncate", "truncate", "MHttpException", "connection was lost"},
                    Row{"Vanish", "vanish 50", "MHttpException", "connection was lost"},
                    Row{"Refused", "status 400", "MRuntimeException", "a simulated fault"},
                    Row{"WrongState", "status 409", "MRuntimeException", "a simulated fault"},
                    Row{"NotThere", "status 404", "MHttpException", "status 404"},
                    Row{"Failed", "status 500", "MHttpException", "status 500"},
                    Row{"Redirected", "status 302", "MHttpException", "status 302"},
                    Row{"Garbage", "garbage", "MHttpException", "no HTTP"},
                    Row{"Nonsense", "nonsense", "MHttpException", "no JSON"},
                    Row{"Bomb", "bomb", "MHttpException", "levels"},
                    Row{"Long", "long", "MHttpException", "larger than"},
                    Row{"Huge", "huge", "MHttpException", "larger than"},
                    Row{"Endless", "endless", "MHttpException", "larger than"},
                    Row{"EndlessHead", "endless-head", "MHttpException", "larger than"}),
    [](const auto& row) { return row.param.name; });

TEST(Fault, ValuesOfWrongTypesMakeNoSense)
{
    SimulatedDetector simulated;
    simulated.fault("GET * wrong");
    Unit unit(simulated.port());
    int readers = 0;
    for (const Call& call : calls()) {
        if (!call.reads)
            continue;
        SCOPED_TRACE(call.name);
        ++readers;
        const Outcome outcome = outcomeOf([&] { call.call(unit, Never); });
        EXPECT_EQ(outcome.failure, "MHttpException");
        EXPECT_THAT(outcome.text, HasSubstr("makes no sense"));
    }
    EXPECT_EQ(readers, 9);
}

/// Silence, also by trickling: every call waits, and ends by its flag.
class Silence : public testing::TestWithParam<const char*> {};

TEST_P(Silence, EndsByTheFlag)
{
    SimulatedDetector simulated;
    simulated.fault("* * " + std::string(GetParam()));
    for (const Call& call : calls()) {
        SCOPED_TRACE(call.name);
        Unit unit(simulated.port());
        const int struck = simulated.struck();
        Running running([&](const Cancel& cancel) { call.call(unit, cancel); });
        EXPECT_TRUE(waitFor([&] { return simulated.struck() > struck; }));
        EXPECT_FALSE(running.ended());
        const Outcome outcome = running.end();
        EXPECT_EQ(outcome.failure, "MRuntimeException");
        EXPECT_THAT(outcome.text, HasSubstr("Cancelled"));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Silence, testing::Values("hang", "trickle 100000"),
                         [](const auto& row) { return row.index == 0 ? "Hang" : "Trickle"; });

TEST(Fault, SilenceEndsByItselfToo)
{
    SimulatedDetector simulated;
    simulated.fault("* * hang");
    Unit unit(simulated.port());
    const std::string place = "control unit 127.0.0.1:" + std::to_string(simulated.port());
    const Outcome version = outcomeOf([&] { unit.stream.version(); });
    EXPECT_EQ(version.failure, "MTimeoutException");
    EXPECT_EQ(version.text,
              "No complete answer within 2 s: " + place + ", GET /v1/stream/parameters/version");
    Unit second(simulated.port());
    Running set([&](const Cancel& cancel) { unit.detector.setNImages(2, cancel); });
    Running abort([&](const Cancel& cancel) { second.detector.abort(cancel); });
    EXPECT_EQ(set.wait().failure, "MTimeoutException");
    EXPECT_EQ(abort.wait().failure, "MHttpException");
}

}  // namespace
