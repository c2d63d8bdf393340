// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a loader computes for each image: statistics and thumbnails, on a diffraction-like frame.
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "logic/loading/Thumbnail.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using morvend::imglib::MImage;

/// Counts around 3 with some strong spots; the same for every run.
template <class T>
MImage frame(int side)
{
    MImage image(side, side, T(0));
    T* pixels = static_cast<T*>(image.data());
    std::minstd_rand random(1);
    for (std::size_t i = 0; i < image.size(); ++i)
        pixels[i] = static_cast<T>(random() % 7 + (random() % 5000 == 0 ? 500 : 0));
    return image;
}

void perPixel(benchmark::State& state, const MImage& image)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(image.size()));
}

template <class T>
void statistics(benchmark::State& state)
{
    const MImage image = frame<T>(static_cast<int>(state.range(0)));
    const MImage mask(image, 0U);
    ImageStatistics result;
    const ComputeStatistics compute(&result);
    for (auto _ : state)
        compute.computeNumbers(image, mask);
    perPixel(state, image);
}

template <class T>
void thumbnailOfImage(benchmark::State& state)
{
    const MImage image = frame<T>(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(thumbnail::ofImage(image, false).cdata());
    perPixel(state, image);
}

void thumbnailOfMask(benchmark::State& state)
{
    const MImage mask(static_cast<int>(state.range(0)), static_cast<int>(state.range(0)), 0U);
    for (auto _ : state)
        benchmark::DoNotOptimize(thumbnail::ofMask(mask).cdata());
    perPixel(state, mask);
}

BENCHMARK(statistics<unsigned int>)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(statistics<unsigned short>)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(thumbnailOfImage<unsigned int>)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(thumbnailOfImage<int>)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(thumbnailOfImage<float>)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(thumbnailOfMask)->Arg(4096)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
