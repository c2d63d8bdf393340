// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours of whole frames with all special cases on, against the same transfer function in NumPy,
// and the default contrast against one read of image and mask. One thread.
#include "bench/HwyTarget.h"
#include "bench/Peer.h"
#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/display/MContrast.h"
#include "imagelib/image/MImage.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using Clock = std::chrono::steady_clock;
using tarvik::bench::median;
using tarvik::bench::neededPythonSeconds;

struct Size {
    const char* name;
    int width, height;
};
constexpr Size sizes[] = {{"4Mpx", 2070, 2167}, {"16Mpx", 4148, 4362}};
constexpr double foreground = 20.0, background = 0.0;
constexpr int cutoff = 20000;

struct Frame {
    MImage image;
    MImage mask;
};

/// A radial background of few counts, reflections of up to 30000, gaps and defective pixels.
template <class T>
Frame makeFrame(const Size& size)
{
    Frame frame{MImage(size.width, size.height, T(0)), MImage(size.width, size.height, 0U)};
    std::mt19937 random(1);
    auto* pixel = static_cast<T*>(frame.image.data());
    auto* flag = static_cast<unsigned*>(frame.mask.data());
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x, ++pixel, ++flag) {
            if (x % 1040 >= 1030 || y % 551 >= 514) {
                *pixel = std::is_floating_point_v<T> ? T(-1) : std::numeric_limits<T>::max();
                *flag = 1;
                continue;
            }
            const double r = std::hypot(x - size.width / 2.0, y - size.height / 2.0);
            const double mean = 1 + 12 * std::exp(-r / 500);
            const double noise = static_cast<double>(random() % 1000) / 500.0 - 1.0;
            *pixel = static_cast<T>(std::max(0.0, mean + 2 * std::sqrt(mean) * noise));
            if (random() % 200 == 0)
                *pixel = static_cast<T>(random() % 30000);
            if (random() % 5000 == 0)
                *flag = 4;
        }
    return frame;
}

template <class T>
const char* numpyType();
template <>
const char* numpyType<unsigned>()
{
    return "u4";
}
template <>
const char* numpyType<int>()
{
    return "i4";
}
template <>
const char* numpyType<unsigned short>()
{
    return "u2";
}
template <>
const char* numpyType<float>()
{
    return "f4";
}

std::string_view bytes(const void* data, std::size_t size)
{
    return {static_cast<const char*>(data), size};
}

double peerSeconds(const Frame& frame, const MColorTable& table, const char* type)
{
    const tarvik::tests::TempFolder folder;
    folder.write("image", bytes(frame.image.cdata(), frame.image.dataSize()));
    folder.write("mask", bytes(frame.mask.cdata(), frame.mask.dataSize()));
    folder.write("linear", bytes(table.linData(), 4 * table.linDataSize()));
    folder.write("logarithmic", bytes(table.logData(), 4 * table.logDataSize()));
    return neededPythonSeconds("peer_numpy.py", "colormap " + folder.path() + ' ' + type + " 5 " +
                                                    std::to_string(foreground) + ' ' +
                                                    std::to_string(background) + ' ' +
                                                    std::to_string(cutoff));
}

template <class Function>
double timed(Function&& function)
{
    const auto begin = Clock::now();
    function();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

template <class T>
void color(benchmark::State& state, const Size& size, const MColorTable& table)
{
    const Frame frame = makeFrame<T>(size);
    const double peer = peerSeconds(frame, table, numpyType<T>());
    MImage colors;
    std::vector<double> seconds;
    for (auto _ : state) {
        seconds.push_back(timed([&] {
            MColorMap::rgb(colors, frame.image, foreground, background, foreground * 1e4, table,
                           "ARGB", &frame.mask, nullptr, cutoff, true, true);
        }));
        state.SetIterationTime(seconds.back());
    }
    state.counters["peer_ms"] = 1e3 * peer;
    state.counters["times_numpy"] = peer / median(seconds);
    state.counters["Gpx_per_s"] = static_cast<double>(frame.image.size()) / median(seconds) / 1e9;
}

/// One sum over all bytes: what reading costs at least.
std::uint64_t read(const MImage& image)
{
    const auto* words = static_cast<const std::uint64_t*>(image.cdata());
    const std::size_t count = image.dataSize() / 8;
    std::uint64_t sum[8] = {};
    for (std::size_t i = 0; i + 8 <= count; i += 8)
        for (std::size_t j = 0; j < 8; ++j)
            sum[j] += words[i + j];
    return sum[0] ^ sum[1] ^ sum[2] ^ sum[3] ^ sum[4] ^ sum[5] ^ sum[6] ^ sum[7];
}

template <class T>
void contrast(benchmark::State& state, const Size& size)
{
    const Frame frame = makeFrame<T>(size);
    const MContrast choose(6.0, 10000);
    double f = 0, b = 0;
    std::vector<double> seconds, reading;
    for (auto _ : state) {
        seconds.push_back(timed([&] { choose(f, b, frame.image, &frame.mask); }));
        reading.push_back(timed([&] {
            benchmark::DoNotOptimize(read(frame.image));
            benchmark::DoNotOptimize(read(frame.mask));
        }));
        state.SetIterationTime(seconds.back());
    }
    state.counters["of_one_read"] = median(seconds) / median(reading);
    state.counters["foreground"] = f;
}

template <class T>
void registerType(const std::string& type)
{
    for (const Size& size : sizes) {
        const auto add = [&](const std::string& name, auto function) {
            benchmark::RegisterBenchmark((name + "_" + size.name + "_" + type).c_str(), function)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->MinTime(0.2);
        };
        add("colormap_hdr", [&](benchmark::State& s) { color<T>(s, size, *MColorTable::hdr()); });
        add("colormap_grey", [&](benchmark::State& s) { color<T>(s, size, *MColorTable::grey()); });
        add("contrast", [&](benchmark::State& s) { contrast<T>(s, size); });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    tarvik::bench::holdToTarget();
    registerType<unsigned>("uint32");
    registerType<int>("int32");
    registerType<unsigned short>("uint16");
    registerType<float>("float");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
