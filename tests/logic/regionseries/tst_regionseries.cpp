// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A region over series of files, whole, damaged, hanging and crashing.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "logic/analysis/roi/RoiComputer.h"
#include "logic/loading/MaskFixup.h"
#include "logic/loading/WorkerPool.h"
#include "logic/regionseries/SeriesCurve.h"
#include "logic/regionseries/SeriesReport.h"
#include "tests/support/EdfFile.h"
#include "tests/support/HangingReads.h"
#include "tests/support/Processes.h"
#include "tests/support/Regions.h"
#include "tests/support/WaitFor.h"

#include <gtest/gtest.h>

#include <semaphore>

#include <csignal>

namespace {

using namespace tarvik::tests;
using morvend::imglib::FormatRegistry;
using morvend::imglib::MImage;
using State = SeriesPoint::State;

constexpr int Width = 16;
constexpr int Height = 12;

/// Counts that differ in every pixel and image.
std::vector<std::int32_t> pixelsOf(int number)
{
    std::vector<std::int32_t> pixels(Width * Height);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::int32_t>((i * 37 + std::size_t(number) * 101) % 251);
    return pixels;
}

class RegionOverSeries : public testing::Test {
protected:
    std::string name(int number) const
    {
        return "x_" + std::to_string(10000 + number).substr(1) + ".edf";
    }
    std::string writeImage(int number) const
    {
        return writeEdf(folder, name(number), Width, pixelsOf(number));
    }
    /// One HDF5 file.
    std::string writeFrames(int count) const
    {
        const std::string path = folder / "x_master.h5";
        morvend::imglib::MHdf5Writer writer(path, 0, {}, morvend::imglib::MCompression::NONE);
        for (int i = 0; i < count; ++i) {
            MImage image(Width, Height, 0);
            std::ranges::copy(pixelsOf(i), static_cast<int*>(image.data()));
            writer.write(image);
        }
        writer.flush();
        return path;
    }
    void compute(const std::string& path, const StatisticsData& region)
    {
        curve.start(path, region);
        ASSERT_TRUE(::waitFor([&] { return !curve.running(); }));
    }

    const TempFolder folder;
    SeriesCurve curve;
};

TEST_F(RegionOverSeries, HasTheNumbersOfEachImageAlone)
{
    std::string path;
    for (int number = 0; number < 30; ++number)
        path = writeImage(number);
    for (const StatisticsData& region :
         {regions::line(1, 1, 12, 9), regions::box(2, 3, 11, 9), regions::circle(8, 6, 3),
          regions::powder(7.5, 6.2, 1, 5)}) {
        compute(path, region);
        ASSERT_EQ(curve.points().size(), 30U);
        EXPECT_EQ(curve.state().images, 30);
        EXPECT_FALSE(curve.partial());
        morvend::imglib::MImageSeries series{1};
        series.open(path);
        MaskFixup masks;
        for (int number = 0; number < 30; ++number) {
            MImage image = series.at(number);
            const MImage mask = masks.certain(image);
            RoiComputer computer;
            computer.setImage(image);
            computer.setMask(mask);
            computer.setStatisticsData(region);
            const RoiStatistics one = computer.compute();
            const SeriesPoint& point = curve.points()[std::size_t(number)];
            EXPECT_EQ(point.number, number);
            EXPECT_EQ(point.state, State::Good);
            EXPECT_NEAR(point.mean, one.mean, 1e-9);
            EXPECT_NEAR(point.sum, one.integral, 1e-9);
            EXPECT_EQ(point.maximum, one.maximum);
            EXPECT_NEAR(point.intensity, one.intensity, 1e-9);
            EXPECT_NEAR(point.intensitySigma, one.intensitySigma, 1e-9);
        }
    }
}

TEST_F(RegionOverSeries, ImagesWithoutNumbersAreNoZeros)
{
    for (const int number : {1, 2, 4, 5, 6})
        writeImage(number);
    folder.write(name(2), "no image");
    auto gap = pixelsOf(5);
    std::fill_n(gap.begin(), 4 * Width, -1);
    const std::string path = writeEdf(folder, name(5), Width, gap);
    compute(path, regions::box(1, 1, 9, 3));
    std::vector<std::pair<int, State>> states;
    for (const SeriesPoint& point : curve.points())
        states.emplace_back(point.number, point.state);
    EXPECT_EQ(states, (std::vector<std::pair<int, State>>{{1, State::Good},
                                                          {2, State::Failed},
                                                          {4, State::Good},
                                                          {5, State::Masked},
                                                          {6, State::Good}}));
    const RegionSeries::News& state = curve.state();
    EXPECT_EQ(state.images, 5);
    EXPECT_EQ(*state.gaps, (std::vector<morvend::imglib::NumberRange>{{3, 3}}));
    ASSERT_EQ(state.failures.size(), 1U);
    const std::string text =
        seriesreport::text("/data/x.edf", curve.region(), curve.points(), state).toStdString();
    EXPECT_TRUE(
        text.starts_with("# /data/x.edf\n# Begin X 1\n# Begin Y 1\n# End X 9\n# End Y 3\n"
                         "# Images 1 to 6\n# " +
                         state.failures[0] +
                         "\n\n# Image     Mean                Sum                 Maximum\n  1  "))
        << text;
    EXPECT_NE(text.find("\n  2         nan                 nan                 nan\n  4  "),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\n  5         nan "), std::string::npos) << text;
}

TEST_F(RegionOverSeries, AFileThatCannotBeOpenedOrARegionBeyondAllBoundsEndsWithItsReason)
{
    compute(folder / "missing.edf", regions::box(1, 1, 9, 3));
    EXPECT_NE(curve.state().error, "");
    EXPECT_TRUE(curve.points().empty());
    compute(writeImage(1), regions::box(1, 1, 2'000'000'000, 3));
    EXPECT_NE(curve.state().error.find("too large"), std::string::npos);
}

TEST_F(RegionOverSeries, AnotherRegionOrTheEndLeavesAHangingFileBehind)
{
    for (int number = 0; number < 4; ++number)
        writeImage(number);
    const TempFolder other;
    {
        const HangingReads hanging(folder.path());
        curve.start(folder / name(0), regions::box(1, 1, 9, 3));
        ASSERT_TRUE(HangingReads::waitFor(1));
        compute(writeEdf(other, "y.edf", Width, pixelsOf(1)), regions::box(1, 1, 9, 3));
        EXPECT_EQ(curve.points().size(), 1U);
        curve.start(folder / name(0), regions::box(1, 1, 9, 3));
        ASSERT_TRUE(HangingReads::waitFor(2));
        curve.clear();
        EXPECT_FALSE(curve.running());
    }
    EXPECT_TRUE(::waitFor([] { return WorkerPool::process().usage().busy == 0; }));
    EXPECT_TRUE(curve.points().empty());
}

class RegionOverFrames : public RegionOverSeries {
protected:
    RegionOverFrames() { FormatRegistry::readHdf5OutOfProcess(true); }
    ~RegionOverFrames() override { FormatRegistry::readHdf5OutOfProcess(false); }

    /// Begins, and sends a signal to all readers when the first images are done.
    std::unique_ptr<RegionSeries> startAndSignal(const std::string& path, int signal, int& readers)
    {
        auto series = std::make_unique<RegionSeries>(
            RegionSeries::Order{path, regions::box(1, 1, 9, 3)}, [this, signal, &readers] {
                if (!signalled.exchange(true))
                    for (const pid_t reader : children())
                        if (runsOtherProgram(reader)) {
                            ::kill(reader, signal);
                            ++readers;
                        }
                changed.release();
            });
        changed.acquire();
        return series;
    }

    std::atomic<bool> signalled = false;
    std::counting_semaphore<> changed{0};
};

TEST_F(RegionOverFrames, ReadersThatDieFailOneImageEach)
{
    int readers = 0;
    const auto series = startAndSignal(writeFrames(200), SIGKILL, readers);
    RegionSeries::News news;
    std::vector<SeriesPoint> points;
    for (news = series->take(); !news.finished; news = series->take()) {
        points.insert(points.end(), news.points.begin(), news.points.end());
        changed.acquire();
    }
    points.insert(points.end(), news.points.begin(), news.points.end());
    EXPECT_EQ(news.error, "");
    EXPECT_EQ(news.settled, 200);
    EXPECT_EQ(points.size(), 200U);
    EXPECT_GE(readers, 1);
    EXPECT_LE(std::ranges::count(points, State::Failed, &SeriesPoint::state), readers);
}

TEST_F(RegionOverFrames, ClosesAtOnceWhileReadersHang)
{
    int readers = 0;
    auto series = startAndSignal(writeFrames(200), SIGSTOP, readers);
    EXPECT_FALSE(series->take().finished);
    series.reset();
    EXPECT_TRUE(::waitFor([] { return children().empty(); })) << "the readers end too";
}

}  // namespace
