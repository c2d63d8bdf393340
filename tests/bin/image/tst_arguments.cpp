// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command line of tarvik-image.
#include "bin/image/Arguments.h"

#include <gmock/gmock.h>

#include <cmath>
#include <iterator>
#include <sstream>

using namespace tarvik::tool;
using Command = Arguments::Command;
using Format = Arguments::Format;

namespace {

Arguments parse(const std::string& line)
{
    std::istringstream words(line);
    return Arguments::parse({std::istream_iterator<std::string>(words), {}});
}

}  // namespace

TEST(ToolArguments, OptionsOfEachCommandInAnyOrder)
{
    const Arguments info =
        parse("info --pixel 3,4 x.cbf --json --frame=12 --pixel=0,-1 --raw-header");
    EXPECT_EQ(info.command, Command::Info);
    EXPECT_EQ(info.file, "x.cbf");
    EXPECT_TRUE(info.json && info.rawHeader);
    EXPECT_EQ(info.frame, 12);
    EXPECT_EQ(info.pixels, (std::vector<std::pair<int, int>>{{3, 4}, {0, -1}}));

    const Arguments play = parse("play x.h5 --frames 12 --no-preloader");
    EXPECT_EQ(play.command, Command::Play);
    EXPECT_EQ(play.playFrames, 12);
    EXPECT_FALSE(play.preloader);
    EXPECT_TRUE(parse("play x.h5").preloader);
    EXPECT_TRUE(parse("thumbnail --json x.h5").json);

    const Arguments render =
        parse("render x.h5 x.PNG --table GS --background -2.5 --foreground=1e3 --scale=3");
    EXPECT_EQ(render.command, Command::Render);
    EXPECT_EQ(render.table, "GS");
    EXPECT_EQ(render.background, -2.5);
    EXPECT_EQ(render.foreground, 1000.0);
    EXPECT_EQ(render.scale, (Scale{3, 1}));
    EXPECT_EQ(parse("render x x.png --contrast 0.5%:75%").contrast,
              (ContrastRange{0.005, 0.75, false}));
    EXPECT_TRUE(parse("render x x.png --contrast sigma").contrast->sigma);
    EXPECT_EQ(parse("render x x.png --scale 0.25").scale, (Scale{1, 4}));
    EXPECT_EQ(parse("render x x.png").scale, (Scale{1, 1}));

    const Arguments peaks = parse("peaks 12 --json x.cbf");
    EXPECT_EQ(peaks.command, Command::Peaks);
    EXPECT_EQ(peaks.count, 12);
    EXPECT_EQ(peaks.file, "x.cbf");
    EXPECT_EQ(parse("stats --count-at -1 --count-at=2.5 x").countAt, (std::vector{-1, 2.5}));
}

TEST(ToolArguments, AFileMayHaveTheNameOfAnOption)
{
    EXPECT_EQ(parse("info -- --json").file, "--json");
    EXPECT_EQ(parse("info -- --help").file, "--help");
    EXPECT_EQ(parse("convert --all -- -a.cbf -b.tif").output, "-b.tif");
    EXPECT_EQ(parse("info -").file, "-");
}

TEST(ToolArguments, TheEndingOfTheOutputChoosesTheFormat)
{
    const std::pair<const char*, Format> table[] = {
        {"o.cbf", Format::Cbf},     {"o.CBF", Format::Cbf}, {"a.b/o.tif", Format::Tiff},
        {"o.x.tiff", Format::Tiff}, {"o.h5", Format::Hdf5}, {"o.hdf5", Format::Hdf5}};
    for (const auto& [output, format] : table)
        EXPECT_EQ(Arguments::parse({"convert", "x", output}).format, format) << output;
}

TEST(ToolArguments, RegionsAreReadByTheirKind)
{
    const StatisticsData line = parse("roi --line -1,2,3,4 x").region;
    EXPECT_EQ(line.roiType, StatisticsData::Line);
    EXPECT_EQ(line.beginX, -1);
    EXPECT_EQ(line.endY, 4);
    const StatisticsData circle = parse("roi --json --circle=5,6,7,90 x").region;
    EXPECT_EQ(circle.roiType, StatisticsData::Circle);
    EXPECT_EQ(circle.radius, 7);
    EXPECT_DOUBLE_EQ(circle.theta, std::acos(0.0));
    const StatisticsData powder = parse("roi --powder 1.5,-2e1,3,40 x").region;
    EXPECT_TRUE(powder.centredCircleDefined());
    EXPECT_EQ(powder.powderY, -20);
    EXPECT_EQ(powder.outerRadius, 40);
}

TEST(ToolArguments, HelpAndVersion)
{
    for (const char* line : {"--help", "-h", "render --help", "info x.cbf -h"})
        EXPECT_EQ(parse(line).command, Command::Help) << line;
    EXPECT_EQ(parse("--version").command, Command::Version);
}

TEST(ToolArguments, WrongUsageIsToldWithItsReason)
{
    const std::pair<const char*, const char*> table[] = {
        {"", "command is needed"},
        {"show x.cbf", "no command show"},
        {"info", "one file"},
        {"info a b", "one file, not 2"},
        {"convert a", "two files"},
        {"info --jsn a", "no option --jsn"},
        {"convert --json a b.cbf", "no option --json"},
        {"stats --line 0,0,1,1 a", "no option --line"},
        {"play x.h5 --json", "no option --json"},
        {"play x.h5 --frames -1", "negative"},
        {"info a --frame", "--frame needs a value"},
        {"info a --json=1", "takes no value"},
        {"info a --frame 12x", "12x"},
        {"info a --frame -1", "negative"},
        {"info a --frame 2147483648", "no number that fits"},
        {"info a --pixel 7", "X,Y"},
        {"info a --pixel 1,2x", "Y of --pixel"},
        {"geometry a --at 3", "--at needs X,Y"},
        {"geometry a --rings -1", "--rings"},
        {"geometry a --rings 100001", "100000"},
        {"render a b.png --foreground inf", "finite"},
        {"render a b.png --scale 0", "--scale"},
        {"render a b.png --contrast 1:99", "--contrast"},
        {"render a b.png --contrast 1%", "--contrast"},
        {"render a b.png --contrast 99%:1%", "--contrast"},
        {"render a b.png --contrast 1%:101%", "--contrast"},
        {"render a b.png --scale 0.3", "--scale"},
        {"render a b.png --scale 1.5", "--scale"},
        {"render a b.png --scale 1e9", "--scale"},
        {"peaks a", "a number and a file"},
        {"peaks -1 a", "no option -1"},
        {"peaks x a", "The number of peaks"},
        {"roi a", "needs --line"},
        {"roi a --box 0,0,1,1 --line 0,0,1,1", "Only one region"},
        {"roi a --box 0,0,1", "four numbers"},
        {"roi a --box 0,0,1,1,1", "four numbers"},
        {"roi a --circle 0,0,-1,1", "negative"},
        {"roi a --powder nan,0,1,1", "finite"},
        {"roi a --powder a,2,3,4", "--powder"},
        {"stats a --count-at 1,5", "--count-at"},
        {"stats a --count-at nan", "--count-at"},
        {"convert a b.cbf --all --frame 1", "exclude each other"},
        {"roi --box 0,0,1,1 --series --frame 1 a", "exclude each other"},
        {"convert a b.edf", "b.edf"},
        {"convert a b", ".tif"},
        {"render a b.jpg", ".png"}};
    for (const auto& [line, reason] : table)
        EXPECT_THAT([&] { parse(line); },
                    testing::ThrowsMessage<UsageError>(testing::HasSubstr(reason)))
            << line;
}
