// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command line of tarvik-image.
#include "bin/image/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

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

TEST(ToolArguments, PlayAndThumbnail)
{
    const Arguments play = Arguments::parse({"play", "x.h5", "--frames", "12", "--no-preloader"});
    EXPECT_EQ(play.command, Command::Play);
    EXPECT_EQ(play.playFrames, 12);
    EXPECT_FALSE(play.preloader);
    EXPECT_TRUE(Arguments::parse({"play", "x.h5"}).preloader);
    EXPECT_THROW(Arguments::parse({"play", "x.h5", "--json"}), UsageError);
    EXPECT_THROW(Arguments::parse({"play", "x.h5", "--frames", "-1"}), UsageError);
    EXPECT_TRUE(Arguments::parse({"thumbnail", "--json", "x.h5"}).json);
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

TEST(ToolArguments, RegionsAreReadByTheirKind)
{
    const Arguments line = Arguments::parse({"roi", "--line", "-1,2,3,4", "x"});
    EXPECT_EQ(line.region.roiType, StatisticsData::Line);
    EXPECT_EQ(line.region.beginX, -1);
    EXPECT_EQ(line.region.endY, 4);
    const Arguments circle = Arguments::parse({"roi", "--json", "--circle=5,6,7,90", "x"});
    EXPECT_EQ(circle.region.roiType, StatisticsData::Circle);
    EXPECT_EQ(circle.region.radius, 7);
    EXPECT_DOUBLE_EQ(circle.region.theta, std::acos(0.0));
    const Arguments powder = Arguments::parse({"roi", "--powder", "1.5,-2e1,3,40", "x"});
    EXPECT_TRUE(powder.region.centredCircleDefined());
    EXPECT_EQ(powder.region.powderY, -20);
    EXPECT_EQ(powder.region.outerRadius, 40);
}

TEST(ToolArguments, PeaksTakeANumberAndAFile)
{
    const Arguments arguments = Arguments::parse({"peaks", "12", "--json", "x.cbf"});
    EXPECT_EQ(arguments.command, Command::Peaks);
    EXPECT_EQ(arguments.count, 12);
    EXPECT_EQ(arguments.file, "x.cbf");
    EXPECT_EQ(Arguments::parse({"stats", "--count-at", "-1", "--count-at=2.5", "x"}).countAt,
              (std::vector<double>{-1, 2.5}));
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
        WrongCase{"PeaksWithoutCount", {"peaks", "a"}, "a number and a file"},
        WrongCase{"RegionMissing", {"roi", "a"}, "needs --line"},
        WrongCase{"RegionTwice",
                  {"roi", "a", "--box", "0,0,1,1", "--line", "0,0,1,1"},
                  "Only one region"},
        WrongCase{"RegionTooShort", {"roi", "a", "--box", "0,0,1"}, "four numbers"},
        WrongCase{"RegionTooLong", {"roi", "a", "--box", "0,0,1,1,1"}, "four numbers"},
        WrongCase{"RadiusNegative", {"roi", "a", "--circle", "0,0,-1,1"}, "negative"},
        WrongCase{"CentreNotFinite", {"roi", "a", "--powder", "nan,0,1,1"}, "finite"},
        WrongCase{"CountAtNoNumber", {"stats", "a", "--count-at", "1,5"}, "--count-at"},
        WrongCase{"AllAndFrame",
                  {"convert", "a", "b.cbf", "--all", "--frame", "1"},
                  "exclude each other"},
        WrongCase{"UnknownEnding", {"convert", "a", "b.edf"}, "b.edf"},
        WrongCase{"NoEnding", {"convert", "a", "b"}, ".tif"},
        WrongCase{"PictureEnding", {"render", "a", "b.jpg"}, ".png"}),
    [](const auto& row) { return row.param.name; });
