// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The message queue between two processes: hand-over of a large image, rate of small texts, first
// use of a segment. The other process is this program again, which answers.
#include "imagelib/image/MImage.h"
#include "imagelib/ipc/MMessageQueue.h"
#include "imagelib/ipc/SegmentPool.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace morvend::imglib;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::string queueName() { return "bench_" + std::to_string(::getpid()); }

std::int64_t now()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

/// Answers as the first letter of each text asks: I: an image follows, say when it came; C: count
/// the texts until the E; say how long they took.
[[noreturn]] void answer(const std::string& name)
{
    MMessageQueue queue(name.c_str());
    for (;;) {
        const std::string question = queue.receive();
        if (question == "I") {
            MImage image;
            queue.send("ready");
            queue.receive(image);
            const std::int64_t came = now();
            benchmark::DoNotOptimize(image.pixel<int>(0, 0, 0));
            queue.send(std::to_string(came));
        } else if (question == "E") {
            queue.send("done");
        }
    }
}

/// The other process, for as long as it lives.
class Peer {
public:
    explicit Peer(const std::string& name)
        : _pid(::fork())
    {
        if (_pid == 0)
            answer(name);
    }
    ~Peer()
    {
        ::kill(_pid, SIGKILL);
        ::waitpid(_pid, nullptr, 0);
    }

private:
    const pid_t _pid;
};

MImage largeImage(bool inPool)
{
    std::optional<morvend::image::PixelSource::Scope> scope;
    if (inPool)
        scope.emplace(*SegmentPool::process());
    MImage image(4096, 4096, morvend::datatypes::INT, 32);  // 64 MiB
    std::memset(image.data(), 1, image.dataSize());
    return image;
}

/// Microseconds from send() to the return of the other side's receive().
double handOver(MMessageQueue& queue, const MImage& image)
{
    queue.send("I");
    queue.receive();
    std::this_thread::sleep_for(300us);  // the other side has fallen asleep in its receive()
    const std::int64_t begin = now();
    queue.send(image);
    return double(std::stoll(queue.receive()) - begin) / 1e3;
}

void report(benchmark::State& state, std::vector<double> times)
{
    std::ranges::sort(times);
    state.counters["least_us"] = times.front();
    state.counters["median_us"] = times[times.size() / 2];
    state.counters["p99_us"] = times[times.size() * 99 / 100];
}

/// Decoded into shared memory beforehand: no byte is copied.
void BM_HandOverWarm(benchmark::State& state)
{
    const Peer peer(queueName());
    MMessageQueue queue(queueName().c_str());
    const MImage image = largeImage(true);
    handOver(queue, image);
    std::vector<double> times;
    for (auto _ : state)
        times.push_back(handOver(queue, image));
    report(state, times);
}
BENCHMARK(BM_HandOverWarm)->Iterations(300)->UseRealTime();

/// From ordinary memory: one copy into a segment that is there.
void BM_HandOverCopied(benchmark::State& state)
{
    const Peer peer(queueName());
    MMessageQueue queue(queueName().c_str());
    const MImage image = largeImage(false);
    handOver(queue, image);
    std::vector<double> times;
    for (auto _ : state)
        times.push_back(handOver(queue, image));
    report(state, times);
}
BENCHMARK(BM_HandOverCopied)->Iterations(50)->UseRealTime();

/// The first use of a segment by both sides: reserving and clearing it here, mapping it there.
void BM_FirstUse(benchmark::State& state)
{
    const Peer peer(queueName());
    MMessageQueue queue(queueName().c_str());
    handOver(queue, MImage(1, 1, 1));
    std::vector<double> made;
    std::vector<double> handed;
    std::vector<MImage> held;  // so that none is used again
    for (auto _ : state) {
        const std::int64_t begin = now();
        {
            const morvend::image::PixelSource::Scope scope(*SegmentPool::process());
            held.emplace_back(4096, 4096, morvend::datatypes::INT, 32);
        }
        made.push_back(double(now() - begin) / 1e3);
        handed.push_back(handOver(queue, held.back()));
    }
    report(state, handed);
    std::ranges::sort(made);
    state.counters["made_us"] = made[made.size() / 2];
}
BENCHMARK(BM_FirstUse)->Iterations(10)->UseRealTime();

/// Texts of 32 bytes one way, as fast as they go.
void BM_SmallTexts(benchmark::State& state)
{
    const Peer peer(queueName());
    MMessageQueue queue(queueName().c_str());
    queue.send("E");
    queue.receive();
    constexpr int Texts = 100'000;
    const std::string text(32, 'x');
    for (auto _ : state) {
        for (int i = 0; i < Texts; ++i)
            queue.send(text);
        queue.send("E");
        queue.receive();
    }
    state.SetItemsProcessed(state.iterations() * Texts);
}
BENCHMARK(BM_SmallTexts)->Iterations(5)->UseRealTime();

/// A question of 32 bytes and its answer.
void BM_QuestionAndAnswer(benchmark::State& state)
{
    const Peer peer(queueName());
    MMessageQueue queue(queueName().c_str());
    for (auto _ : state) {
        queue.send("E");
        benchmark::DoNotOptimize(queue.receive());
    }
}
BENCHMARK(BM_QuestionAndAnswer)->Iterations(20'000)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
