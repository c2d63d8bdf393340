// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command line of tarvik-image.
#include "bin/image/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using tarvik::tool::Arguments;
using tarvik::tool::Scale;
using tarvik::tool::UsageError;
using Command = Arguments::Command;
using Words = std::vector<std::string>;

TEST(ToolArguments, InfoWithAllItsOptionsInAnyOrder)
{
    const Arguments arguments = Arguments::parse({"info", "--pixel", "3,4", "x.cbf", "--json",
                                                  "--frame=12", "--pixel=0,-1", "--raw-header"});
    EXPECT_EQ(arguments.command, Command::Info);
    EXPECT_EQ(arguments.file, "x.cbf");
    EXPECT_TRUE(arguments.json);
    EXPECT_TRUE(arguments.rawHeader);
    EXPECT_EQ(arguments.frame, 12);
    EXPECT_EQ(arguments.pixels, (std::vector<std::pair<int, int>>{{3, 4}, {0, -1}}));
}

TEST(ToolArguments, AFileMayHaveTheNameOfAnOption)
{
    EXPECT_EQ(Arguments::parse({"info", "--", "--json"}).file, "--json");
    EXPECT_EQ(Arguments::parse({"info", "--", "--help"}).file, "--help");
    EXPECT_EQ(Arguments::parse({"convert", "--all", "--", "-a.cbf", "-b.tif"}).output, "-b.tif");
    EXPECT_EQ(Arguments::parse({"info", "-"}).file, "-");
}

TEST(ToolArguments, RenderTakesLevelsAndScale)
{
    const Arguments arguments =
        Arguments::parse({"render", "x.h5", "x.PNG", "--table", "Grey Scale", "--background",
                          "-2.5", "--foreground=1e3", "--scale=3"});
    EXPECT_EQ(arguments.command, Command::Render);
    EXPECT_EQ(arguments.table, "Grey Scale");
    EXPECT_EQ(arguments.background, -2.5);
    EXPECT_EQ(arguments.foreground, 1000.0);
    EXPECT_EQ(arguments.scale, (Scale{3, 1}));
    EXPECT_EQ(Arguments::parse({"render", "x", "x.png", "--scale", "0.25"}).scale, (Scale{1, 4}));
    EXPECT_EQ(Arguments::parse({"render", "x", "x.png"}).scale, (Scale{1, 1}));
}

TEST(ToolArguments, TheEndingOfTheOutputChoosesTheFormat)
{
    using Format = Arguments::Format;
    const std::pair<const char*, Format> table[] = {
        {"o.cbf", Format::Cbf},     {"o.CBF", Format::Cbf}, {"a.b/o.tif", Format::Tiff},
        {"o.x.tiff", Format::Tiff}, {"o.h5", Format::Hdf5}, {"o.hdf5", Format::Hdf5}};
    for (const auto& [output, format] : table)
        EXPECT_EQ(Arguments::parse({"convert", "x", output}).format, format) << output;
}

TEST(ToolArguments, HelpAndVersion)
{
    for (const Words& words :
         {Words{"--help"}, Words{"-h"}, Words{"render", "--help"}, Words{"info", "x.cbf", "-h"}})
        EXPECT_EQ(Arguments::parse(words).command, Command::Help);
    EXPECT_EQ(Arguments::parse({"--version"}).command, Command::Version);
}

namespace {

struct WrongCase {
    const char* name;
    Words words;
    const char* reason;
};

class WrongUsage : public testing::TestWithParam<WrongCase> {};

}  // namespace

TEST_P(WrongUsage, IsToldWithItsReason)
{
    try {
        Arguments::parse(GetParam().words);
        ADD_FAILURE() << "was understood";
    } catch (const UsageError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(GetParam().reason));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, WrongUsage,
    testing::Values(
        WrongCase{"Nothing", {}, "command is needed"},
        WrongCase{"UnknownCommand", {"show", "x.cbf"}, "no command show"},
        WrongCase{"NoFile", {"info"}, "one file"},
        WrongCase{"TwoFiles", {"info", "a", "b"}, "one file, not 2"},
        WrongCase{"NoOutput", {"convert", "a"}, "two files"},
        WrongCase{"UnknownOption", {"info", "--jsn", "a"}, "no option --jsn"},
        WrongCase{
            "OptionOfAnotherCommand", {"convert", "--json", "a", "b.cbf"}, "no option --json"},
        WrongCase{"ValueMissing", {"info", "a", "--frame"}, "--frame needs a value"},
        WrongCase{"ValueTooMuch", {"info", "a", "--json=1"}, "takes no value"},
        WrongCase{"FrameNoNumber", {"info", "a", "--frame", "12x"}, "12x"},
        WrongCase{"FrameNegative", {"info", "a", "--frame", "-1"}, "negative"},
        WrongCase{"FrameTooLarge", {"info", "a", "--frame", "2147483648"}, "no number that fits"},
        WrongCase{"PixelWithoutComma", {"info", "a", "--pixel", "7"}, "X,Y"},
        WrongCase{"PixelNoNumber", {"info", "a", "--pixel", "1, 2"}, "Y of --pixel"},
        WrongCase{"LevelNotFinite", {"render", "a", "b.png", "--foreground", "inf"}, "finite"},
        WrongCase{"ScaleZero", {"render", "a", "b.png", "--scale", "0"}, "--scale"},
        WrongCase{"ScaleThird", {"render", "a", "b.png", "--scale", "0.3"}, "--scale"},
        WrongCase{"ScaleHalfMore", {"render", "a", "b.png", "--scale", "1.5"}, "--scale"},
        WrongCase{"ScaleHuge", {"render", "a", "b.png", "--scale", "1e9"}, "--scale"},
        WrongCase{"AllAndFrame",
                  {"convert", "a", "b.cbf", "--all", "--frame", "1"},
                  "exclude each other"},
        WrongCase{"UnknownEnding", {"convert", "a", "b.edf"}, "b.edf"},
        WrongCase{"NoEnding", {"convert", "a", "b"}, ".tif"},
        WrongCase{"PictureEnding", {"render", "a", "b.jpg"}, ".png"}),
    [](const auto& row) { return row.param.name; });
