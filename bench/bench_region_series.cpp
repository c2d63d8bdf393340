// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A region over a series of 4 megapixels, and over 1,000 small files, against reading the same
// images and nothing else.
#include "bench/LoadingFrame.h"
#include "bench/LoadingSeries.h"
#include "bench/Peer.h"
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/MImageWriter.h"
#include "logic/regionseries/RegionSeries.h"
#include "tests/support/Regions.h"

#include <semaphore>

using namespace tarvik::bench;
using morvend::imglib::FormatRegistry;
using morvend::imglib::MImage;

namespace {

struct Images {
    std::string path;
    int count;
};

Images frames()
{
    static const LoadingSeries series(4, 100);
    return {series.master(), series.frames()};
}

/// A corner of a frame in each file.
Images smallFiles()
{
    constexpr int Count = 1000;
    static const tarvik::tests::TempFolder folder;
    const auto pathOf = [](int number) {
        return folder / ("small_" + std::to_string(10'000 + number).substr(1) + ".cbf");
    };
    [[maybe_unused]] static const bool written = [&] {
        const LoadingFrame<int> frame(4, 1);
        MImage corner(487, 195, 0);
        for (int y = 0; y < corner.height(); ++y)
            std::copy_n(frame.image.pixels<int>() + std::ptrdiff_t(y) * frame.image.width(),
                        corner.width(), static_cast<int*>(corner.data()) + y * corner.width());
        for (int number = 1; number <= Count; ++number)
            morvend::imglib::MImageWriter::write(corner, pathOf(number),
                                                 morvend::imglib::MImageWriter::CBF);
        return true;
    }();
    return {pathOf(1), Count};
}

/// One after the other, as a view reads them: HDF5 files by a process of their own.
void readAll(const Images& images)
{
    morvend::imglib::MImageSeries series{1};
    series.open(images.path);
    for (int number = series.first(); number >= 0; number = series.next(number))
        benchmark::DoNotOptimize(series.at(number).cdata());
}

void computeAll(const Images& images, const StatisticsData& region)
{
    std::binary_semaphore changed{0};
    RegionSeries work({images.path, region}, [&] { changed.release(); });
    RegionSeries::News news;
    while (!news.finished) {
        changed.acquire();
        news = work.take();
    }
    if (news.done != images.count || !news.failures.empty())
        throw std::runtime_error("images are missing");
}

void overSeries(benchmark::State& state, const Images& images, const StatisticsData& region)
{
    FormatRegistry::readHdf5OutOfProcess(true);
    std::vector<double> ratios;
    const auto seconds = [](auto&& work) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    readAll(images);
    for (auto _ : state) {
        // Each in turn, as the host is shared.
        const double alone = seconds([&] { readAll(images); });
        const double whole = seconds([&] { computeAll(images, region); });
        state.SetIterationTime(whole);
        ratios.push_back(whole / alone);
        state.counters["ms_an_image"] = 1e3 * whole / images.count;
        state.counters["reading_ms"] = 1e3 * alone / images.count;
    }
    state.counters["x_reading"] = median(ratios);
    FormatRegistry::readHdf5OutOfProcess(false);
}

[[maybe_unused]] const int registered = [] {
    const struct {
        const char* name;
        Images (*images)();
        StatisticsData region;
    } kinds[] = {{"box_100", frames, regions::box(800, 900, 900, 1000)},
                 {"box_1000", frames, regions::box(500, 500, 1500, 1500)},
                 {"line_across", frames, regions::line(10, 10, 2000, 2000)},
                 {"circle_20", frames, regions::circle(800, 900, 20)},
                 {"circle_500", frames, regions::circle(1000, 1000, 500)},
                 {"ring_of_50", frames, regions::powder(1030.5, 1080.2, 600, 650)},
                 {"powder_1000", frames, regions::powder(1030.5, 1080.2, 0, 1000)},
                 {"small_line", smallFiles, regions::line(10, 10, 480, 180)},
                 {"small_circle", smallFiles, regions::circle(240, 100, 20)},
                 {"small_ring", smallFiles, regions::powder(240.5, 100.2, 50, 80)}};
    for (const auto& kind : kinds)
        benchmark::RegisterBenchmark(
            kind.name,
            [kind](benchmark::State& state) { overSeries(state, kind.images(), kind.region); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(5);
    return 0;
}();

}  // namespace

BENCHMARK_MAIN();
