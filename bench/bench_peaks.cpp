// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The peak search against NumPy and against the plain loop of the definition.
#include "bench/AnalysisFrame.h"
#include "bench/HwyTarget.h"
#include "bench/Peer.h"
#include "tests/logic/analysis/peaks/PlainPeaks.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

namespace {

using morvend::imglib::MImage;
using tarvik::bench::AnalysisFrame;
using tarvik::bench::Stopwatch;

std::string_view bytes(const MImage& image)
{
    return {static_cast<const char*>(image.cdata()), image.dataSize()};
}

double numpySeconds(const AnalysisFrame& frame)
{
    const tarvik::tests::TempFolder folder;
    folder.write("image", bytes(frame.image));
    folder.write("mask", bytes(frame.mask));
    return tarvik::bench::pythonSeconds("peer_peaks.py",
                                        folder.path() + ' ' + std::to_string(frame.image.width()));
}

double plainSeconds(const AnalysisFrame& frame)
{
    double least = 1e9;
    for (int i = 0; i < 5; ++i) {
        const auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(
            reference::plainPeaks<int, unsigned>(frame.image, frame.mask).data());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        least = std::min(least, taken.count());
    }
    return least;
}

template <double (*Peer)(const AnalysisFrame&)>
void peaks(benchmark::State& state)
{
    const AnalysisFrame frame(static_cast<int>(state.range(0)));
    Stopwatch watch(state, Peer(frame));
    ImagePeaks found;
    for (auto _ : state)
        watch.time([&] { found.setImage(frame.image, frame.mask); });
    state.counters["peaks"] = found.numberOfPeaks();
}

void search(benchmark::State& state) { peaks<numpySeconds>(state); }
void searchAgainstPlainLoop(benchmark::State& state) { peaks<plainSeconds>(state); }

BENCHMARK(search)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(searchAgainstPlainLoop)->Arg(2048)->Arg(4096)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    tarvik::bench::holdToTarget();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
