// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What it costs to read HDF5 images in a process of their own.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <map>

namespace {

using namespace morvend::imglib;

/// A series of small or 16-megapixel images with header and mask.
const std::string& master(int side)
{
    static const tarvik::tests::TempFolder folder;
    static std::map<int, std::string> masters;
    std::string& path = masters[side];
    if (path.empty()) {
        path = folder / ("x" + std::to_string(side) + "_master.h5");
        MHdf5Writer writer(path, 4, {}, MCompression::BITSHUFFLE_LZ4);
        MImage image(side, side, 0u);
        auto* pixels = static_cast<unsigned*>(image.data());
        for (std::size_t i = 0; i < image.size(); ++i)
            pixels[i] = static_cast<unsigned>(i * 2654435761u >> 30);
        image.optionalData().set_wavelength(1.0f);
        image.optionalData().set_pixel_mask(MImage(side, side, 0u));
        for (int i = 0; i < 4; ++i)
            writer.write(image);
    }
    return path;
}

void open(benchmark::State& state)
{
    const std::string& path = master(static_cast<int>(state.range(0)));
    FormatRegistry::readHdf5OutOfProcess(state.range(1) != 0);
    for (auto _ : state) {
        MImageSeries series(0);
        benchmark::DoNotOptimize(series.open(path));
    }
    FormatRegistry::readHdf5OutOfProcess(false);
}

/// The first image of each of its series: new segments of shared memory.
void firstImage(benchmark::State& state)
{
    const std::string& path = master(static_cast<int>(state.range(0)));
    FormatRegistry::readHdf5OutOfProcess(state.range(1) != 0);
    for (auto _ : state) {
        MImageSeries series(0);
        series.open(path);
        benchmark::DoNotOptimize(series.at(1));
    }
    FormatRegistry::readHdf5OutOfProcess(false);
}

/// Images forth and back, segments and pool warm.
void nextImage(benchmark::State& state)
{
    const std::string& path = master(static_cast<int>(state.range(0)));
    FormatRegistry::readHdf5OutOfProcess(state.range(1) != 0);
    MImageSeries series(0);
    series.open(path);
    MImage image;
    std::size_t number = 0;
    for (int i = 0; i < 8; ++i)
        image = series.at(1 + number++ % 4);
    for (auto _ : state)
        image = series.at(1 + number++ % 4);
    FormatRegistry::readHdf5OutOfProcess(false);
}

}  // namespace

BENCHMARK(open)->Args({64, 0})->Args({64, 1})->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(firstImage)
    ->Args({4096, 0})
    ->Args({4096, 1})
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(nextImage)
    ->Args({64, 0})
    ->Args({64, 1})
    ->Args({4096, 0})
    ->Args({4096, 1})
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
