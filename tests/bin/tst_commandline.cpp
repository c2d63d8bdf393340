// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every option, alone and in odd company.
#include "bin/CommandLine.h"

#include <gtest/gtest.h>

namespace {

using Role = CommandLine::Role;

CommandLine parse(QStringList arguments)
{
    arguments.prepend("tarvik");
    return CommandLine::parse(arguments, "3.2.0");
}

const std::string usage =
    "usage: tarvik [options] [ <image_file_1> [ image_file_2 [...]] ]\n\n options:\n"
    "  -h, -help, --help               Print this help text.\n"
    "  --disableGLSL                   Disable OpenGL shaders\n"
    "  --daemon <message queue id>  Run as daemon. For internal use only.\n"
    "  --preloader <message queue id>  Run as preloader. For internal use only.\n"
    "  --parent-pid <pid>  Pid of parent process. For internal use only.\n\n"
    "  <image_file 1> [ image_file _2 [...]] \n"
    "     Display image_file_1, image_file_2, ... in separate windows.\n";

struct RunCase {
    const char* name;
    QStringList arguments;
    Role role;
    QString queueId;
    QStringList files;
    int parentPid;
    bool glsl;
};

class CommandLineRuns : public testing::TestWithParam<RunCase> {};

TEST_P(CommandLineRuns, TakesItsRole)
{
    const RunCase& row = GetParam();
    const CommandLine line = parse(row.arguments);
    EXPECT_FALSE(line.exitCode);
    EXPECT_EQ(line.role, row.role);
    EXPECT_EQ(line.queueId, row.queueId);
    EXPECT_EQ(line.imageFiles, row.files);
    EXPECT_EQ(line.parentPid, row.parentPid);
    EXPECT_EQ(line.glslEnabled, row.glsl);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CommandLineRuns,
    testing::Values(
        RunCase{"Nothing", {}, Role::Viewer, {}, {}, 0, true},
        RunCase{"FilesInOrder", {"b.cbf", "a.cbf"}, Role::Viewer, {}, {"b.cbf", "a.cbf"}, 0, true},
        RunCase{"LoneShortHelpIsAFile", {"-h"}, Role::Viewer, {}, {"-h"}, 0, true},
        RunCase{"UnknownOptionIsAFile", {"--full"}, Role::Viewer, {}, {"--full"}, 0, true},
        RunCase{"OptionsAreComparedExactly",
                {"--Daemon", "--daemon=q", "--disableglsl"},
                Role::Viewer,
                {},
                {"--Daemon", "--daemon=q", "--disableglsl"},
                0,
                true},
        RunCase{"WithoutShaders", {"--disableGLSL", "a"}, Role::Viewer, {}, {"a"}, 0, false},
        RunCase{"SerialNumberOfTheDesktop", {"-psn_0_1", "a"}, Role::Viewer, {}, {"a"}, 0, true},
        RunCase{"DaemonQueueIsAFileToo", {"--daemon", "q"}, Role::Daemon, "q", {"q"}, 0, true},
        RunCase{"Preloader",
                {"--preloader", "q", "--parent-pid", "12"},
                Role::Preloader,
                "q",
                {"q", "12"},
                12,
                true},
        RunCase{"ViewerOpensItsParentPid",
                {"--parent-pid", "123"},
                Role::Viewer,
                {},
                {"123"},
                123,
                true},
        RunCase{"NoParent", {"--parent-pid", "0", "f"}, Role::Viewer, {}, {"0", "f"}, 0, true},
        RunCase{"NegativePid", {"--parent-pid", "-5"}, Role::Viewer, {}, {"-5"}, -5, true},
        RunCase{"LastRoleWins",
                {"--daemon", "a", "--preloader", "b"},
                Role::Preloader,
                "b",
                {"a", "b"},
                0,
                true},
        RunCase{"LastQueueWins",
                {"--daemon", "a", "--daemon", "b"},
                Role::Daemon,
                "b",
                {"a", "b"},
                0,
                true},
        RunCase{"ValueThatIsAnOptionActsAsOneToo",
                {"--daemon", "--disableGLSL"},
                Role::Daemon,
                "--disableGLSL",
                {},
                0,
                false}),
    [](const auto& row) { return row.param.name; });

struct EndCase {
    const char* name;
    QStringList arguments;
    int exitCode;
    std::string text;
};

class CommandLineEnds : public testing::TestWithParam<EndCase> {};

TEST_P(CommandLineEnds, WithTextAndExitCode)
{
    const CommandLine line = parse(GetParam().arguments);
    ASSERT_TRUE(line.exitCode);
    EXPECT_EQ(*line.exitCode, GetParam().exitCode);
    EXPECT_EQ(line.text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CommandLineEnds,
    testing::Values(EndCase{"Help", {"-help"}, 0, usage + "\n"},
                    EndCase{"LongHelp", {"--help"}, 0, usage + "\n"},
                    EndCase{"Version", {"-version"}, 0, "3.2.0\n"},
                    EndCase{"VersionFirst", {"--version", "--help"}, 0, "3.2.0\n"},
                    EndCase{"HelpFirst", {"--help", "--version"}, 0, usage + "\n"},
                    EndCase{"HelpBehindAFile", {"a.cbf", "--help"}, 0, usage + "\n"},
                    EndCase{"LaterErrorsAreNotSeen", {"--version", "--daemon"}, 0, "3.2.0\n"},
                    EndCase{"HelpAsQueueId", {"--daemon", "--help"}, 0, usage + "\n"},
                    EndCase{"DaemonWithoutQueue", {"--daemon"}, 1, usage + "\n"},
                    EndCase{"PreloaderWithoutQueue", {"--preloader"}, 1, usage + "\n"},
                    EndCase{"ParentWithoutPid", {"a.cbf", "--parent-pid"}, 1, usage + "\n"},
                    EndCase{"PidOfLetters", {"--parent-pid", "x1"}, 1, usage + "\n"},
                    EndCase{"PidInHexadecimal", {"--parent-pid", "0x10"}, 1, usage + "\n"},
                    EndCase{"PidBeyondInt", {"--parent-pid", "2147483648"}, 1, usage + "\n"},
                    EndCase{"ErrorBeforeHelp", {"--parent-pid", "--help"}, 1, usage + "\n"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
