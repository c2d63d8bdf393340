// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions of interest against plain loops, and in pixels of the region per second.
#include "bench/AnalysisFrame.h"
#include "bench/Peer.h"
#include "bench/PlainRegions.h"
#include "logic/analysis/roi/ConnectedComponentLabelling.h"
#include "logic/analysis/roi/RoiComputer.h"

#include <benchmark/benchmark.h>

#include <numbers>

namespace {

using morvend::imglib::MImage;
using tarvik::bench::AnalysisFrame;
using tarvik::bench::Stopwatch;

StatisticsData region(StatisticsData::RoiType type)
{
    StatisticsData data;
    data.defined = true;
    data.roiType = type;
    return data;
}

StatisticsData ring(double x, double y, int radius)
{
    StatisticsData data = region(StatisticsData::CentredCircle);
    data.powderX = x;
    data.powderY = y;
    data.outerRadius = radius;
    return data;
}

RoiStatistics compute(const AnalysisFrame& frame, const StatisticsData& data)
{
    RoiComputer computer;
    computer.setImage(frame.image);
    computer.setMask(frame.mask);
    computer.setStatisticsData(data);
    return computer.compute();
}

template <class Work>
double secondsOf(const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    return taken.count();
}

double plainSeconds(const AnalysisFrame& frame, const StatisticsData& data)
{
    const reference::Pixels pixels{frame.image, frame.mask};
    return secondsOf([&] {
        benchmark::DoNotOptimize(data.roiType == StatisticsData::Box
                                     ? reference::box(pixels, data).integral
                                     : reference::ring(pixels, data).integral);
    });
}

/// Labelling all of the box around a line, where the product follows the line alone.
double labellingSeconds(const AnalysisFrame& frame)
{
    const auto* pixels = frame.image.pixels<int>();
    return secondsOf([&] {
        std::vector<bool> field(frame.image.size());
        for (std::size_t i = 0; i < field.size(); ++i)
            field[i] = pixels[i] > 20;
        std::vector<int> labels;
        ConnectedComponentLabelling::label(field, labels, frame.image.width(),
                                           frame.image.height());
        benchmark::DoNotOptimize(labels.data());
    });
}

/// A ring whose centre moves with every step, as in a drag.
void powder(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    const int radius = static_cast<int>(state.range(1));
    const AnalysisFrame frame(side);
    const double x = side / 2.0 - 3.7;
    const double y = side / 2.0 + 6.8;
    double shift = 0;
    Stopwatch watch(state, plainSeconds(frame, ring(x, y, radius)));
    for (auto _ : state) {
        shift = shift < 0.5 ? shift + 0.01 : 0;
        watch.time(
            [&] { benchmark::DoNotOptimize(compute(frame, ring(x + shift, y, radius)).integral); });
    }
}

void others(benchmark::State& state, const AnalysisFrame& frame, const StatisticsData& data,
            double peerSeconds, double pixels)
{
    Stopwatch watch(state, peerSeconds);
    for (auto _ : state)
        watch.time([&] { benchmark::DoNotOptimize(compute(frame, data).integral); });
    state.counters["Mpx_per_s"] = benchmark::Counter(
        pixels / 1e6 * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void wholeBox(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    StatisticsData data = region(StatisticsData::Box);
    data.endX = data.endY = side;
    const AnalysisFrame frame(side);
    others(state, frame, data, plainSeconds(frame, data), double(side) * side);
}

void circle(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    StatisticsData data = region(StatisticsData::Circle);
    data.circleX = data.circleY = side / 2;
    data.radius = 500;
    data.theta = 0.3;
    others(state, AnalysisFrame(side), data, 0, std::numbers::pi * 600 * 600);
}

void diagonal(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    StatisticsData data = region(StatisticsData::Line);
    data.endX = side - 1;
    data.endY = side - 2;
    const AnalysisFrame frame(side);
    others(state, frame, data, labellingSeconds(frame), 2.0 * side);
}

BENCHMARK(powder)
    ->Args({2048, 1000})
    ->Args({4096, 1000})
    ->Args({4096, 2900})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(wholeBox)->Arg(2048)->Arg(4096)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(circle)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(diagonal)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
