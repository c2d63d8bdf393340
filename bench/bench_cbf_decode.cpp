// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// CBF byte-offset data in memory and CBF files, against fabio in the same run.
#include "bench/HwyTarget.h"
#include "bench/Peer.h"
#include "imagelib/image/MImage.h"
#include "imagelib/image/StreamCopy.h"
#include "imagelib/io/formats/cbf/ByteOffset.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <vector>

namespace {

using namespace morvend::imglib;

/// A frame of counts around a background with gaps of -1 and some 20 strong spots in a megapixel.
MImage frame(int megapixels, double background)
{
    const int side = megapixels == 1 ? 1024 : megapixels == 4 ? 2048 : 4096;
    MImage image(side, side, morvend::datatypes::INT, 32);
    auto* pixels = static_cast<int*>(image.data());
    std::mt19937 random(7);
    std::poisson_distribution<int> counts(background);
    std::vector<int> noise(1 << 16);
    for (int& each : noise)
        each = counts(random);
    for (int y = 0; y < side; ++y) {
        const bool gap = y % 212 >= 195;
        for (int x = 0; x < side; ++x)
            *pixels++ = gap || x % 494 >= 487 ? -1 : noise[random() & 0xffff];
    }
    pixels = static_cast<int*>(image.data());
    for (int spot = 0; spot < 20 * megapixels; ++spot) {
        const auto at = random() % (image.size() - 8);
        for (std::size_t i = 0; i < 8; ++i)
            pixels[at + i] += static_cast<int>(random() % 200'000);
    }
    return image;
}

std::span<const std::byte> bytesOf(const MImage& image)
{
    return {static_cast<const std::byte*>(image.cdata()), image.dataSize()};
}

/// Background of the second argument; 1 count stands for the low one of most frames.
MImage frameOf(const benchmark::State& state)
{
    return frame(static_cast<int>(state.range(0)), static_cast<double>(state.range(1)));
}

/// Least seconds of a loop that does nothing but what memory sees of the decoder: it reads the
/// stream and stores the pixels, past the caches where the decoder does.
double leastTraffic(std::span<const std::byte> packed, std::span<std::byte> pixels)
{
    constexpr std::size_t Piece = 1024;
    std::vector<std::byte> piece(4 * Piece);
    const bool streams = morvend::image::isWorthStreaming(pixels.data(), pixels.size());
    double least = std::numeric_limits<double>::infinity();
    for (int round = 0; round < 50; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t at = 0; at + Piece <= std::min(packed.size(), pixels.size() / 4);
             at += Piece) {
            std::uint64_t sum = 0;
            for (std::size_t i = 0; i < Piece; i += 8) {
                std::uint64_t word;
                std::memcpy(&word, packed.data() + at + i, 8);
                sum += word;
            }
            benchmark::DoNotOptimize(sum);
            if (streams)
                morvend::image::streamCopy(piece.data(), pixels.data() + 4 * at, piece.size());
            else
                std::memset(pixels.data() + 4 * at, static_cast<int>(sum & 1), piece.size());
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        least = std::min(least, taken.count());
    }
    return least;
}

void unpack(benchmark::State& state)
{
    const MImage image = frameOf(state);
    const auto packed = packByteOffset(bytesOf(image), 4, true);
    const tarvik::tests::TempFolder folder;
    const auto path =
        folder.write("packed", {reinterpret_cast<const char*>(packed.data()), packed.size()});
    const double peer = tarvik::bench::pythonSeconds(
        "peer_fabio.py", "unpack " + path + ' ' + std::to_string(image.size()));
    MImage target(image.width(), image.height(), image.type(), 32);
    const std::span<std::byte> pixels(static_cast<std::byte*>(target.data()), target.dataSize());
    tarvik::bench::Stopwatch watch(state, peer);
    const double traffic = leastTraffic(packed, pixels);
    for (auto _ : state)
        watch.time([&] { benchmark::DoNotOptimize(unpackByteOffset(packed, 4, pixels)); });
    state.counters["traffic_ms"] = traffic * 1e3;
    state.counters["traffic_x_peer"] = peer / traffic;
    if (!samePixels(image, target))
        state.SkipWithError("wrong pixels");
}

void pack(benchmark::State& state)
{
    const MImage image = frameOf(state);
    tarvik::bench::Stopwatch watch(state, 0);
    for (auto _ : state)
        watch.time([&] { benchmark::DoNotOptimize(packByteOffset(bytesOf(image), 4, true)); });
}

void readFile(benchmark::State& state)
{
    const MImage image = frameOf(state);
    const tarvik::tests::TempFolder folder;
    const std::string path = folder / "frame.cbf";
    writeCbf(image, path);
    const double peer = tarvik::bench::pythonSeconds("peer_fabio.py", "open " + path);
    MImage read;
    tarvik::bench::Stopwatch watch(state, peer);
    for (auto _ : state) {
        read = MImage();  // gives its memory back to the pool, as a viewer does
        watch.time([&] { read = openCbf(ByteSource::open(path))->frame(0); });
    }
    if (!samePixels(image, read))
        state.SkipWithError("wrong pixels");
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"megapixels", "background"})->Unit(benchmark::kMillisecond);
    for (const int background : {1, 3000}) {
        for (const int megapixels : {1, 4, 16})
            benchmark->Args({megapixels, background});
    }
}

BENCHMARK(unpack)->Apply(sizes);
BENCHMARK(readFile)->Apply(sizes);
BENCHMARK(pack)->Args({4, 1})->Args({4, 3000})->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    tarvik::bench::holdToTarget();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
