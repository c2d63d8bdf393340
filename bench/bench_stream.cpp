// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of 4 megapixels from a simulated control unit in another process to decoded images: as
// many as the machine carries, with the parts of the way on their own and a plain copy beside it.
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoStream.h"
#include "simulator/Frames.h"

#include "Peer.h"
#include "SimulatorProcess.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <thread>

namespace {

using namespace morvend::imglib;
using tarvik::bench::median;
using tarvik::bench::simulator;
using Clock = std::chrono::steady_clock;

constexpr QSize FrameSize{2072, 2168};
constexpr int FramesOfAPass = 100;
const std::atomic<bool> Never = false;

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// A copy of one decoded frame into memory that is there.
double copySeconds(const MImage& frame)
{
    static MImage target(FrameSize.width(), FrameSize.height(), 0U);
    std::vector<double> times;
    for (int i = 0; i < 15; ++i) {
        const auto begin = Clock::now();
        std::memcpy(target.data(), frame.cdata(), frame.dataSize());
        benchmark::ClobberMemory();
        times.push_back(secondsSince(begin));
    }
    return median(times);
}

tarvik::simulator::Frames& frames()
{
    static tarvik::simulator::Frames made(FrameSize);
    return made;
}

/// One pass is a series at a rate that no machine carries, from its second frame to its last one.
void BM_FromUnitToImage(benchmark::State& state)
{
    MHalvoDetector detector("127.0.0.1", simulator().port());
    MHalvoStream stream("127.0.0.1", simulator().port());
    stream.setEnabled(true, Never);
    detector.setFrameTime(0.0005, Never);
    detector.setNImages(FramesOfAPass, Never);
    std::vector<double> perFrame, copies;
    for ([[maybe_unused]] auto pass : state) {
        copies.push_back(copySeconds(frames().pixels(0)));
        detector.arm(Never);
        std::thread exposure(
            [&] { MHalvoDetector("127.0.0.1", simulator().port()).trigger(Never); });
        int received = 0;
        Clock::time_point begin;
        for (bool more = true; more;) {
            const MStreamObject object = stream.pop(60, Never);
            more = object.type() != MStreamObject::End;
            if (object.type() == MStreamObject::Frame && received++ == 0)
                begin = Clock::now();
        }
        perFrame.push_back(secondsSince(begin) / std::max(received - 1, 1));
        exposure.join();
        state.counters["lost"] = FramesOfAPass - received;
    }
    state.counters["frames/s"] = 1 / median(perFrame);
    state.counters["copies"] = median(perFrame) / median(copies);
}
BENCHMARK(BM_FromUnitToImage)->Iterations(5)->UseRealTime();

/// The decoding of the same frames alone.
void BM_DecodeAlone(benchmark::State& state)
{
    MImage target(FrameSize.width(), FrameSize.height(), 0U);
    std::vector<double> times, copies;
    int number = 0;
    for ([[maybe_unused]] auto pass : state) {
        const QByteArray& stored = frames().frame(number++).bytes;
        const auto begin = Clock::now();
        morvend::codec::bitshuffleDecode(
            {reinterpret_cast<const std::byte*>(stored.constData()), std::size_t(stored.size())}, 4,
            morvend::codec::BlockPacking::Lz4, 0,
            {static_cast<std::byte*>(target.data()), target.dataSize()});
        times.push_back(secondsSince(begin));
        copies.push_back(copySeconds(frames().pixels(0)));
        state.counters["stored_MB"] = double(stored.size()) / 1e6;
    }
    state.counters["frames/s"] = 1 / median(times);
    state.counters["copies"] = median(times) / median(copies);
}
BENCHMARK(BM_DecodeAlone)->Iterations(50)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
