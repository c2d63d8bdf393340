// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Thumbnails of frames and masks against NumPy and a plain loop in the same run. One thread.
#include "bench/HwyTarget.h"
#include "bench/LoadingFrame.h"
#include "bench/Peer.h"
#include "bench/PlainChain.h"
#include "logic/loading/Thumbnail.h"
#include "tests/support/TempFolder.h"

namespace {

using morvend::imglib::MImage;
using tarvik::bench::LoadingFrame;
using tarvik::bench::Stopwatch;

template <class T>
void ofImage(benchmark::State& state, const char* type, int megapixels)
{
    const LoadingFrame<T> frame(megapixels, 1);
    const tarvik::tests::TempFolder folder;
    folder.write("image", {static_cast<const char*>(frame.image.cdata()), frame.image.dataSize()});
    const double peer = tarvik::bench::pythonSeconds(
        "peer_numpy.py", "thumbnail " + folder.path() + ' ' + type + " 5 " +
                             std::to_string(frame.image.width()) + ' ' +
                             std::to_string(frame.image.height()));
    Stopwatch watch(state, peer);
    for (auto _ : state)
        watch.time(
            [&] { benchmark::DoNotOptimize(thumbnail::ofImage(frame.image, false).cdata()); });
}

void ofMask(benchmark::State& state, int megapixels)
{
    const LoadingFrame<int> frame(megapixels, 1);
    double plain = 1e9;
    for (int i = 0; i < 5; ++i)
        plain = std::min(plain, tarvik::bench::seconds([&] {
                             benchmark::DoNotOptimize(
                                 tarvik::bench::plainMaskThumbnail(frame.mask).cdata());
                         }));
    Stopwatch watch(state, plain);
    for (auto _ : state)
        watch.time([&] { benchmark::DoNotOptimize(thumbnail::ofMask(frame.mask).cdata()); });
}

void registerAll()
{
    const auto add = [](const std::string& name, int megapixels, auto function) {
        benchmark::RegisterBenchmark((name + '/' + std::to_string(megapixels) + "Mpx").c_str(),
                                     function)
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.3);
    };
    for (const int size : {4, 16}) {
        add("thumbnail_uint32", size, [=](auto& s) { ofImage<unsigned>(s, "u4", size); });
        add("thumbnail_int32", size, [=](auto& s) { ofImage<int>(s, "i4", size); });
        add("thumbnail_uint16", size, [=](auto& s) { ofImage<unsigned short>(s, "u2", size); });
        add("thumbnail_float", size, [=](auto& s) { ofImage<float>(s, "f4", size); });
        add("thumbnail_mask", size, [=](auto& s) { ofMask(s, size); });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    tarvik::bench::holdToTarget();
    benchmark::Initialize(&argc, argv);
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
}
