// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Demo data: the same for the same seed, the same pixels in all formats, true to their geometry.
#include "demo/Crystal.h"
#include "demo/DemoOptions.h"
#include "demo/FrameMaker.h"
#include "imagelib/image/MException.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <thread>

#include <sys/wait.h>

namespace tarvik::demo {
namespace {

using morvend::imglib::MImage;
using tests::TempFolder;

int run(const std::string& arguments)
{
    const int status = std::system((TARVIK_DEMO_DATA " " + arguments + " 2>/dev/null >&2").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::map<std::string, std::string> filesBelow(const std::string& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        files[std::filesystem::relative(entry.path(), folder)] =
            std::string(std::istreambuf_iterator<char>(file), {});
    }
    return files;
}

TEST(DemoData, IsTheSameForTheSameSeedAndInAllFormatsAndAnotherForAnother)
{
    const TempFolder folder;
    ASSERT_EQ(run(folder / "a --small --frames 12"), 0);
    const std::time_t written = std::time(nullptr);
    ASSERT_EQ(run(folder / "c --small --frames 12 --seed 2"), 0);
    const std::string script = tests::sourcePath("/tests/demo/compare_formats.py ");
    EXPECT_EQ(std::system((TARVIK_PYTHON " " + script + (folder / "a/small")).c_str()), 0);
    while (std::time(nullptr) <= written)  // time stamps count seconds
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ASSERT_EQ(run(folder / "b --small --frames 12"), 0);
    const auto a = filesBelow(folder / "a"), b = filesBelow(folder / "b"),
               c = filesBelow(folder / "c");
    EXPECT_EQ(a.size(), 3 * 12 + 3U);
    ASSERT_EQ(a.size(), b.size());
    for (const auto& [name, content] : a) {
        EXPECT_TRUE(b.at(name) == content) << name;
        EXPECT_FALSE(c.at(name) == content) << name;
    }
}

TEST(DemoData, NumbersAreThoseOfEveryMachine)
{
    // Pinned, so that a change of compiler or processor that changes the data is seen.
    const FrameMaker maker(detectorNamed("small"), 5, 1);
    const MImage frame = maker.make(2);
    std::uint64_t hash = 14695981039346656037ULL;  // FNV-1a
    const auto* bytes = static_cast<const unsigned char*>(frame.cdata());
    for (std::size_t i = 0; i < frame.dataSize(); ++i)
        hash = (hash ^ bytes[i]) * 1099511628211ULL;
    EXPECT_EQ(hash, 11766417831737834165ULL);
}

TEST(DemoFrames, DoNotDependOnTheirOrder)
{
    const FrameMaker maker(detectorNamed("small"), 5, 7);
    const MImage late = maker.make(4);
    for (int i = 0; i < 4; ++i)
        maker.make(i);
    EXPECT_TRUE(samePixels(maker.make(4), late));
    EXPECT_FALSE(samePixels(maker.make(3), late));
}

TEST(DemoFrames, FollowPoissonStatisticsAroundTheBeamAndHaveARingAtItsBraggAngle)
{
    const FrameMaker maker(detectorNamed("1m"), 1, 3);
    const Detector& detector = maker.detector();
    const MImage frame = maker.make(0), mask = *frame.optionalData().pixel_mask();
    std::vector<double> sums(600), counts(600), squares(600);
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x) {
            const auto radius =
                static_cast<std::size_t>(std::hypot(x - detector.beamX(), y - detector.beamY()));
            const auto value = frame.pixel<double>(x, y, 0);
            // Reflections are far above what else there is.
            if (radius < sums.size() && value < 20 && mask.pixel<int>(x, y, 1) == 0) {
                sums[radius] += value;
                squares[radius] += value * value;
                ++counts[radius];
            }
        }
    const auto ring = [](const std::vector<double>& of) {  // where the mean hardly changes
        return std::accumulate(of.begin() + 198, of.begin() + 202, 0.0);
    };
    ASSERT_GT(ring(counts), 2000);
    const double mean = ring(sums) / ring(counts);
    EXPECT_GT(mean, 1);
    EXPECT_NEAR((ring(squares) / ring(counts) - mean * mean) / mean, 1, 0.2);
    const double theta = std::asin(Wavelength / (2 * 3.67));
    std::size_t highest = 250;
    for (std::size_t r = 250; r < 450; ++r)
        if (sums[r] / counts[r] > sums[highest] / counts[highest])
            highest = r;
    EXPECT_NEAR(static_cast<double>(highest),
                detector.distance * std::tan(2 * theta) / detector.pixelSize, 2);
}

TEST(DemoFrames, ShowSaturatedSpotsGapsAndDefects)
{
    const FrameMaker maker(detectorNamed("1m"), 4, 1);
    const MImage frame = maker.make(2), flagged = maker.flagged(frame);
    const MImage mask = *frame.optionalData().pixel_mask();
    EXPECT_FALSE(flagged.optionalData().pixel_mask());
    int gaps = 0, dead = 0, noisy = 0, saturated = 0;
    for (std::size_t p = 0; p < frame.size(); ++p) {
        const unsigned bits = mask.pixels<unsigned>()[p], value = frame.pixels<unsigned>()[p];
        const int flag = flagged.pixels<int>()[p];
        ASSERT_EQ(flag, bits == 0 ? static_cast<int>(value) : bits == Gap ? -1 : -2);
        ASSERT_EQ(value == 0xffffffffU, bits == Gap);
        gaps += bits == Gap;
        dead += bits == Dead && value == 0xfffffffeU;
        noisy += bits == Noisy;
        saturated += bits == 0 && value >= static_cast<unsigned>(CountCutoff);
    }
    EXPECT_THAT((std::array{gaps, dead, noisy, saturated}), testing::Each(testing::Gt(0)));
}

TEST(DemoCrystal, ReflectionsAreBeamsThatComeAndGo)
{
    // The same beam meets a detector at 1.5 times the distance 1.5 times as far from the centre.
    const Detector near = detectorNamed("1m");
    Detector far = near;
    far.distance *= 1.5;
    const auto first = reflections(near, 20, 5), second = reflections(far, 20, 5);
    ASSERT_GT(first.size(), 500U);
    std::size_t found = 0;
    for (const Reflection& a : second)
        for (const Reflection& b : first)
            if (a.frame == b.frame && a.intensity == b.intensity) {
                EXPECT_NEAR(a.x - far.beamX(), 1.5 * (b.x - near.beamX()), 1e-6);
                EXPECT_NEAR(a.y - far.beamY(), 1.5 * (b.y - near.beamY()), 1e-6);
                ++found;
            }
    EXPECT_GT(found, 100U);
    std::map<int, int> byFrame;
    for (const Reflection& reflection : first)
        ++byFrame[static_cast<int>(std::floor(reflection.frame))];
    for (int frame = 0; frame < 20; ++frame)
        EXPECT_GT(byFrame[frame], 10) << frame;
}

TEST(DemoCrystal, PartsOfAReflectionMakeTheWhole)
{
    for (const double at : {3.0, 3.5, 3.99}) {
        double sum = 0;
        for (int frame = 0; frame < 8; ++frame)
            sum += partIn(frame, at);
        EXPECT_NEAR(sum, 1, 1e-12) << at;
        EXPECT_GT(partIn(3, at), 0.3);
    }
}

TEST(DemoOptions, WrongArgumentsAreNamed)
{
    const std::pair<std::vector<std::string>, std::string> table[] = {
        {{}, "the folder is missing"},
        {{"--small"}, "the folder is missing"},
        {{"d", "e"}, "unexpected argument: e"},
        {{"d", "--huge"}, "unexpected argument: --huge"},
        {{"d", "--size", "2m"}, "unknown size: 2m"},
        {{"d", "--size"}, "--size needs a value"},
        {{"d", "--frames", "0"}, "--frames needs a number from 1 to 10000, not \"0\""},
        {{"d", "--frames", "3x"}, "--frames needs a number from 1 to 10000, not \"3x\""},
        {{"d", "--formats", "cbf,png"}, "unknown format: png"},
        {{"d", "--formats", ""}, "unknown format: "}};
    for (const auto& [arguments, reason] : table)
        EXPECT_THAT([&] { parseOptions(arguments); },
                    testing::ThrowsMessage<morvend::MBadParameterException>(reason));
}

TEST(DemoOptions, ChooseSeries)
{
    const DemoOptions all = parseOptions({"d"});
    ASSERT_EQ(all.series.size(), 3U);
    EXPECT_EQ(all.series[2].size, "16m");
    const DemoOptions one =
        parseOptions({"--seed", "9", "d", "--size", "4m", "--formats", "edf,cbf"});
    EXPECT_EQ(one.seed, 9U);
    ASSERT_EQ(one.series.size(), 1U);
    EXPECT_EQ(one.series[0].size, "4m");
    EXPECT_THAT(one.series[0].formats, testing::ElementsAre(Format::Edf, Format::Cbf));
}

TEST(DemoProgram, TellsByItsExitCode)
{
    const TempFolder folder;
    EXPECT_EQ(run("--help"), 0);
    EXPECT_EQ(run(""), 2);
    EXPECT_EQ(run(folder / "a --what"), 2);
    EXPECT_EQ(run(folder.write("file", "no folder") + " --small"), 1);
}

}  // namespace
}  // namespace tarvik::demo
