// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A region over a series of 4 megapixels, against reading the same images and nothing else.
#include "bench/LoadingSeries.h"
#include "bench/Peer.h"
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MImageSeries.h"
#include "logic/regionseries/RegionSeries.h"
#include "tests/support/Regions.h"

#include <semaphore>

using namespace tarvik::bench;
using morvend::imglib::FormatRegistry;

namespace {

constexpr int Frames = 100;

const LoadingSeries& series()
{
    static const LoadingSeries frames(4, Frames);
    return frames;
}

/// One after the other, read by a process of their own, as a view has it.
void readAll()
{
    morvend::imglib::MImageSeries images{1};
    images.open(series().master());
    for (int number = images.first(); number >= 0; number = images.next(number))
        benchmark::DoNotOptimize(images.at(number).cdata());
}

void computeAll(const StatisticsData& region)
{
    std::binary_semaphore changed{0};
    RegionSeries work({series().master(), region}, [&] { changed.release(); });
    RegionSeries::News news;
    while (!news.finished) {
        changed.acquire();
        news = work.take();
    }
    if (news.done != Frames || !news.failures.empty())
        throw std::runtime_error("images are missing");
}

void overSeries(benchmark::State& state, const StatisticsData& region)
{
    FormatRegistry::readHdf5OutOfProcess(true);
    std::vector<double> ratios;
    const auto seconds = [](auto&& work) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    readAll();
    for (auto _ : state) {
        // Each in turn, as the host is shared.
        const double alone = seconds(readAll);
        const double whole = seconds([&] { computeAll(region); });
        state.SetIterationTime(whole);
        ratios.push_back(whole / alone);
        state.counters["ms_an_image"] = 1e3 * whole / Frames;
        state.counters["reading_ms"] = 1e3 * alone / Frames;
    }
    state.counters["x_reading"] = median(ratios);
    FormatRegistry::readHdf5OutOfProcess(false);
}

[[maybe_unused]] const int registered = [] {
    const struct {
        const char* name;
        StatisticsData region;
    } kinds[] = {{"box_100", regions::box(800, 900, 900, 1000)},
                 {"box_1000", regions::box(500, 500, 1500, 1500)},
                 {"line_across", regions::line(10, 10, 2000, 2000)},
                 {"circle_20", regions::circle(800, 900, 20)},
                 {"circle_500", regions::circle(1000, 1000, 500)},
                 {"ring_of_50", regions::powder(1030.5, 1080.2, 600, 650)},
                 {"powder_1000", regions::powder(1030.5, 1080.2, 0, 1000)}};
    for (const auto& kind : kinds)
        benchmark::RegisterBenchmark(
            kind.name,
            [region = kind.region](benchmark::State& state) { overSeries(state, region); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(5);
    return 0;
}();

}  // namespace

BENCHMARK_MAIN();
