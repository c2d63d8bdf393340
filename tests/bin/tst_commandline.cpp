// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every option, alone and in odd company.
#include "bin/CommandLine.h"

#include <gtest/gtest.h>

namespace {

using Role = CommandLine::Role;

CommandLine parse(const QString& arguments)
{
    QStringList words = arguments.split(' ', Qt::SkipEmptyParts);
    words.prepend("tarvik");
    return CommandLine::parse(words, "3.2.0");
}

const std::string usage =
    "usage: tarvik [options] [ <image_file_1> [ image_file_2 [...]] ]\n\n options:\n"
    "  -h, -help, --help               Print this help text.\n"
    "  --disableGLSL                   Disable OpenGL shaders\n"
    "  --daemon <message queue id>  Run as daemon. For internal use only.\n"
    "  --preloader <message queue id>  Run as preloader. For internal use only.\n"
    "  --parent-pid <pid>  Pid of parent process. For internal use only.\n\n"
    "  <image_file 1> [ image_file _2 [...]] \n"
    "     Display image_file_1, image_file_2, ... in separate windows.\n\n";

struct RunCase {
    const char* arguments;
    Role role;
    const char* queueId;
    const char* files;
    int parentPid;
    bool glsl;
};

TEST(CommandLine, TakesItsRole)
{
    const RunCase table[] = {
        {"", Role::Viewer, "", "", 0, true},
        {"b.cbf a.cbf", Role::Viewer, "", "b.cbf a.cbf", 0, true},
        {"-h", Role::Viewer, "", "-h", 0, true},
        {"--full", Role::Viewer, "", "--full", 0, true},
        {"--Daemon --daemon=q", Role::Viewer, "", "--Daemon --daemon=q", 0, true},
        {"--disableglsl", Role::Viewer, "", "--disableglsl", 0, true},
        {"--disableGLSL a", Role::Viewer, "", "a", 0, false},
        {"-psn_0_1 a", Role::Viewer, "", "a", 0, true},
        {"--daemon q", Role::Daemon, "q", "q", 0, true},
        {"--preloader q --parent-pid 12", Role::Preloader, "q", "q 12", 12, true},
        {"--parent-pid 123", Role::Viewer, "", "123", 123, true},
        {"--parent-pid 0 f", Role::Viewer, "", "0 f", 0, true},
        {"--parent-pid -5", Role::Viewer, "", "-5", -5, true},
        {"--daemon a --preloader b", Role::Preloader, "b", "a b", 0, true},
        {"--daemon a --daemon b", Role::Daemon, "b", "a b", 0, true},
        {"--daemon --disableGLSL", Role::Daemon, "--disableGLSL", "", 0, false}};
    for (const RunCase& row : table) {
        SCOPED_TRACE(row.arguments);
        const CommandLine line = parse(row.arguments);
        EXPECT_FALSE(line.exitCode);
        EXPECT_EQ(line.role, row.role);
        EXPECT_EQ(line.queueId, row.queueId);
        EXPECT_EQ(line.imageFiles.join(' '), row.files);
        EXPECT_EQ(line.parentPid, row.parentPid);
        EXPECT_EQ(line.glslEnabled, row.glsl);
    }
}

TEST(CommandLine, EndsWithTextAndExitCode)
{
    const std::string version = "3.2.0\n";
    const std::string noValue = " needs a value\n";
    const std::string noNumber = "--parent-pid needs a whole number, not ";
    const std::tuple<const char*, int, std::string, std::string> table[] = {
        {"-help", 0, usage, ""},
        {"--help", 0, usage, ""},
        {"-version", 0, version, ""},
        {"--version --help", 0, version, ""},
        {"--help --version", 0, usage, ""},
        {"a.cbf --help", 0, usage, ""},
        {"--version --daemon", 0, version, ""},
        {"--daemon --help", 0, usage, ""},
        {"--daemon", 1, usage, "--daemon" + noValue},
        {"--preloader", 1, usage, "--preloader" + noValue},
        {"a.cbf --parent-pid", 1, usage, "--parent-pid" + noValue},
        {"--parent-pid x1", 1, usage, noNumber + "\"x1\"\n"},
        {"--parent-pid 0x10", 1, usage, noNumber + "\"0x10\"\n"},
        {"--parent-pid 2147483648", 1, usage, noNumber + "\"2147483648\"\n"},
        {"--parent-pid --help", 1, usage, noNumber + "\"--help\"\n"}};
    for (const auto& [arguments, exitCode, text, reason] : table) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.exitCode, exitCode) << arguments;
        EXPECT_EQ(line.text, text) << arguments;
        EXPECT_EQ(line.reason, reason.empty() ? "" : "tarvik: " + reason) << arguments;
    }
}

TEST(CommandLine, SaysWhatLooksLikeAnOptionAndIsNone)
{
    EXPECT_EQ(parse("a.cbf --disableGLSL").notes, "");
    EXPECT_EQ(
        parse("-h --full").notes,
        "tarvik: -h is no option and taken for an image file; tarvik --help lists the options\n"
        "tarvik: --full is no option and taken for an image file; tarvik --help lists the "
        "options\n");
}

}  // namespace
