// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which request goes wrong how, and what is said of a script or an argument that makes no sense.
#include "simulator/FaultScript.h"

#include <gmock/gmock.h>

#include <sys/wait.h>

using tarvik::simulator::FaultScript;
using testing::HasSubstr;

namespace {

QString kind(FaultScript& script, const char* method, const char* path)
{
    const auto fault = script.ofRequest(method, path);
    return fault ? fault->kind : QString();
}

TEST(FaultScript, TheFirstLineThatMatchesAndIsNotUsedUpCounts)
{
    FaultScript script;
    script.add("# slow\n"
               "PUT */count_time skip=1 times=2 delay 20  # then as usual\n"
               "* /v1/* status 503\n"
               "STREAM frame lose\n");
    EXPECT_EQ(kind(script, "PUT", "/v1/detector/parameters/count_time"), "status");
    EXPECT_EQ(kind(script, "PUT", "/v1/detector/parameters/count_time"), "delay");
    EXPECT_EQ(kind(script, "GET", "/v1/detector/parameters/count_time"), "status");
    EXPECT_EQ(script.ofRequest("PUT", "/v1/detector/parameters/count_time")->argument, 20);
    EXPECT_EQ(kind(script, "PUT", "/v1/detector/parameters/count_time"), "status");
    EXPECT_EQ(kind(script, "GET", "/v2/"), "");
    EXPECT_EQ(script.ofMessage("frame")->kind, "lose");
    EXPECT_FALSE(script.ofMessage("end"));
}

TEST(FaultScript, SaysWhichLineMakesNoSense)
{
    for (const auto& [text, reason] : {std::pair{"\nGET *", "line 2: a line is"},
                                       {"HEAD * drop", "the method is"},
                                       {"GET * explode", "\"explode\" is not known"},
                                       {"GET * delay", "delay takes a number"},
                                       {"GET * drop 3", "drop takes no argument"},
                                       {"GET * delay -1", "\"-1\" is no number"},
                                       {"GET * often=3 drop", "neither skip nor times"}}) {
        FaultScript script;
        try {
            script.add(text);
            ADD_FAILURE() << text;
        } catch (const std::invalid_argument& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

TEST(SimulatorProgram, EndsWithACodeForWhatItCannotDo)
{
    const auto run = [](const std::string& arguments) {
        return WEXITSTATUS(
            std::system((TARVIK_SIMULATOR " " + arguments + " >/dev/null 2>&1").c_str()));
    };
    EXPECT_EQ(run("--help"), 0);
    EXPECT_EQ(run("--frame-size 5x5"), 2);
    EXPECT_EQ(run("--port none"), 2);
    EXPECT_EQ(run("--faults /nowhere"), 2);
    EXPECT_EQ(run("--port 65536"), 2);
}

}  // namespace
