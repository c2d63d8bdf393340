// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From a request to a finished image, against the plain chain in the same run: from the file, from
// the preloader's cache, the hand-over between the processes alone, and a movie.
#include "bench/HwyTarget.h"
#include "bench/LoadingSeries.h"
#include "bench/Peer.h"
#include "bench/PlainChain.h"
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/ipc/MMessageQueue.h"
#include "logic/loading/StepTimes.h"
#include "logic/preload/PreloaderProcess.h"
#include "logic/preload/PreloaderService.h"
#include "logic/support/Console.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <csignal>
#include <map>
#include <memory>
#include <thread>

namespace {

using morvend::imglib::MImage;
using morvend::imglib::MMessageQueue;
using tarvik::bench::LoadingSeries;
using tarvik::bench::PlainChain;
using tarvik::bench::Stepper;
using tarvik::bench::Stopwatch;

constexpr int SeriesFrames = 40;

const LoadingSeries& series(int megapixels)
{
    static std::map<int, std::unique_ptr<LoadingSeries>> all;
    // Both are written at once: the plain chain puts the packaged filter in the place of ours, and
    // that one adds three values of its own to those of a new data set.
    if (all.empty())
        for (const int size : {4, 16})
            all[size] = std::make_unique<LoadingSeries>(size, SeriesFrames);
    return *all.at(megapixels);
}

/// The least time of the plain chain; checks that it computes what the loader does.
double plainSeconds(const LoadingSeries& frames, Stepper& stepper)
{
    const PlainChain chain(frames.dataFile(), "/entry/data/data", frames.mask());
    double least = 1e9;
    for (int i = 1; i <= 4; ++i) {
        double sum = 0;
        least = std::min(least, tarvik::bench::seconds([&] { sum = chain.run(std::size_t(i)); }));
        stepper.go(i + 1);
        if (sum != stepper.record().statistics->sum)
            throw std::runtime_error("plain chain and loader do not agree");
    }
    return least;
}

/// This program in the preloader's role, for this object's life.
class Preloading {
public:
    Preloading()
        : _process(QCoreApplication::applicationFilePath(), true)
        , _queue(PreloaderClient::messageQueueId().c_str())
    {
        if (_queue.waitForPeer(std::chrono::seconds(5)) == MMessageQueue::NoPeer)
            throw std::runtime_error("no preloader");
    }
    ~Preloading()
    {
        ::kill(static_cast<pid_t>(_process.processId()), SIGKILL);
        // Or the next one takes this one's end of the queue for its own.
        while (_queue.peer() != MMessageQueue::NoPeer)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

private:
    PreloaderProcess _process;
    MMessageQueue _queue;
};

void fromFile(benchmark::State& state, int megapixels)
{
    const LoadingSeries& frames = series(megapixels);
    Stepper stepper(frames.master());
    Stopwatch watch(state, plainSeconds(frames, stepper));
    int index = 1;
    for (auto _ : state) {
        index = index % SeriesFrames + 1;
        watch.time([&] { stepper.go(index); });
    }
}

/// As the viewer does: the file is read by a process of its own.
void fromFileApart(benchmark::State& state, int megapixels)
{
    using morvend::imglib::FormatRegistry;
    FormatRegistry::readHdf5OutOfProcess(true);
    fromFile(state, megapixels);
    FormatRegistry::readHdf5OutOfProcess(false);
}

void fromCache(benchmark::State& state, int megapixels)
{
    const LoadingSeries& frames = series(megapixels);
    const Preloading preloading;
    Stepper stepper(frames.master());
    Stopwatch watch(state, plainSeconds(frames, stepper));
    int index = SeriesFrames;
    const auto hitsBefore = StepTimes::now().hits;
    double asked = 0;
    for (auto _ : state) {
        if (++index > SeriesFrames) {
            stepper.go(1);
            index = 2;
        }
        // Reading ahead has its own time: here all of it has happened.
        std::this_thread::sleep_for(std::chrono::milliseconds(megapixels == 4 ? 15 : 60));
        ++asked;
        watch.time([&] { stepper.go(index); });
    }
    state.counters["hits"] = double(StepTimes::now().hits - hitsBefore) / asked;
}

/// A question and its answer, up to the image in hand.
void handOver(benchmark::State& state, int megapixels)
{
    const LoadingSeries& frames = series(megapixels);
    const Preloading preloading;
    PreloaderClient client;
    client.put(1, frames.master());
    Stopwatch watch(state, 0);
    unsigned long index = 1;
    double hits = 0, asked = 0;
    for (auto _ : state) {
        if (++index > SeriesFrames) {
            index = 2;
            client.put(1, frames.master());
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(megapixels == 4 ? 15 : 60));
        MImage image;
        ++asked;
        watch.time([&] { hits += client.get(image, index); });
    }
    state.counters["hits"] = hits / asked;
}

void movie(benchmark::State& state, int megapixels)
{
    const LoadingSeries& frames = series(megapixels);
    const Preloading preloading;
    Stepper stepper(frames.master());
    const auto before = StepTimes::now();
    for (auto _ : state)
        for (int i = 2; i <= SeriesFrames; ++i)
            stepper.go(i);
    const auto after = StepTimes::now();
    state.counters["fps"] =
        benchmark::Counter(double(after.images - before.images), benchmark::Counter::kIsRate);
    state.counters["hits"] =
        double(after.hits - before.hits) / double(after.images - before.images);
}

void registerAll()
{
    const auto add = [](const std::string& name, int megapixels, auto function) {
        return benchmark::RegisterBenchmark(
                   (name + '/' + std::to_string(megapixels) + "Mpx").c_str(), function)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    for (const int size : {4, 16}) {
        const int steps = size == 4 ? 150 : 60;
        add("from_file", size, [=](auto& s) { fromFile(s, size); })->Iterations(steps);
        add("from_file_apart", size, [=](auto& s) { fromFileApart(s, size); })->Iterations(steps);
        add("from_cache", size, [=](auto& s) { fromCache(s, size); })->Iterations(steps);
        add("hand_over", size, [=](auto& s) { handOver(s, size); })->Iterations(steps);
        add("movie", size, [=](auto& s) { movie(s, size); })->Iterations(size == 4 ? 8 : 4);
    }
}

int preload(const char* queue, int parent)
{
    PreloaderService service(queue);
    std::thread watch([&] {
        while (::kill(parent, 0) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        service.stop();
    });
    service.run();
    watch.join();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    console::muteInformation();
    tarvik::bench::holdToTarget();
    if (argc == 5 && std::string(argv[1]) == "--preloader")
        return preload(argv[2], std::atoi(argv[4]));
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
}
