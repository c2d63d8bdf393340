// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A series of 4 megapixels from a simulated control unit in another process into a file: what
// arrives at a given rate, and how fast the file alone takes frames, plain and compressed.
//
// Files go into the folder TARVIK_BENCH_FOLDER (/var/tmp) and are removed; the peer is a plain
// write of the same bytes there. TARVIK_BENCH_FRAMES (1000) frames make a series.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoStream.h"
#include "imagelib/io/MHdf5Writer.h"
#include "logic/detector/HalvoFileWriterWorker.h"
#include "logic/detector/HalvoMonitorWorker.h"
#include "simulator/Frames.h"

#include "Peer.h"
#include "SimulatorProcess.h"

#include <QCoreApplication>
#include <QThread>

#include <filesystem>
#include <fstream>

namespace {

using namespace morvend::imglib;
using tarvik::bench::simulator;
using Clock = std::chrono::steady_clock;

constexpr QSize FrameSize{2072, 2168};
const std::atomic<bool> Never = false;

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

class Folder {
public:
    Folder()
    {
        const char* const base = std::getenv("TARVIK_BENCH_FOLDER");
        _path =
            std::string(base ? base : "/var/tmp") + "/tarvik-bench-" + std::to_string(::getpid());
        std::filesystem::create_directory(_path);
    }
    ~Folder() { std::filesystem::remove_all(_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string operator/(const char* name) const { return _path + "/" + name; }

private:
    std::string _path;
};

std::vector<MImage>& frames()
{
    static std::vector<MImage> made = [] {
        tarvik::simulator::Frames simulated(FrameSize);
        std::vector<MImage> all;
        for (int i = 0; i < 8; ++i)
            all.push_back(simulated.pixels(i));
        return all;
    }();
    return made;
}

/// The bytes of some frames by write() alone. @returns seconds a frame
double plainWriteSeconds(const Folder& folder, int images)
{
    const auto begin = Clock::now();
    std::ofstream file(folder / "plain", std::ios::binary);
    for (int i = 0; i < images; ++i) {
        const MImage& frame = frames()[std::size_t(i) % 8];
        file.write(static_cast<const char*>(frame.cdata()), std::streamsize(frame.dataSize()));
    }
    file.close();
    const double seconds = secondsSince(begin) / images;
    std::filesystem::remove(folder / "plain");
    return seconds;
}

void BM_FileAlone(benchmark::State& state)
{
    constexpr int Images = 200;
    const auto filter = static_cast<MCompression::FILTER>(state.range(0));
    std::vector<double> times, plain;
    for ([[maybe_unused]] auto pass : state) {
        const Folder folder;
        plain.push_back(plainWriteSeconds(folder, Images));
        const auto begin = Clock::now();
        MHdf5Writer writer(folder / "x_master.h5", 0, {}, filter);
        for (int i = 0; i < Images; ++i)
            writer.write(frames()[std::size_t(i) % 8]);
        writer.flush();
        times.push_back(secondsSince(begin) / Images);
    }
    state.counters["frames/s"] = 1 / tarvik::bench::median(times);
    state.counters["plain_writes"] = tarvik::bench::median(times) / tarvik::bench::median(plain);
    state.counters["plain/s"] = 1 / tarvik::bench::median(plain);
}
BENCHMARK(BM_FileAlone)
    ->Arg(MCompression::NONE)
    ->Arg(MCompression::BITSHUFFLE_LZ4)
    ->Iterations(3)
    ->UseRealTime();

/// Reader and writer as the program wires them, without display. The argument is the frames that
/// the detector takes in a second.
void BM_SeriesToFile(benchmark::State& state)
{
    const char* const wanted = std::getenv("TARVIK_BENCH_FRAMES");
    const int images = wanted ? std::atoi(wanted) : 1000;
    for ([[maybe_unused]] auto pass : state) {
        const Folder folder;
        const auto budget = std::make_shared<FrameBudget>();
        const auto meter = std::make_shared<SeriesMeter>();
        auto* const reader = new HalvoMonitorWorker(budget, meter);
        auto* const writer = new HalvoFileWriterWorker(budget, meter);
        QThread reading, writing;
        using R = HalvoMonitorWorker;
        using W = HalvoFileWriterWorker;
        QObject::connect(reader, &R::newSeries, writer, &W::initSeries);
        QObject::connect(reader, &R::newFrame, writer, &W::add);
        QObject::connect(reader, &R::finished, writer, &W::finish);
        QObject::connect(writer, &W::seriesFinished, writer, [] { QCoreApplication::quit(); });
        QObject::connect(writer, &W::error, writer, [](const QString& text) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(text));
        });
        QObject::connect(&reading, &QThread::finished, reader, &QObject::deleteLater);
        QObject::connect(&writing, &QThread::finished, writer, &QObject::deleteLater);
        reader->moveToThread(&reading);
        writer->moveToThread(&writing);
        reading.start();
        writing.start();

        MHalvoDetector detector("127.0.0.1", simulator().port());
        MHalvoStream stream("127.0.0.1", simulator().port());
        stream.setEnabled(true, Never);
        stream.setHeaderDetail("all", Never);
        detector.setFrameTime(1.0 / double(state.range(0)), Never);
        detector.setNImages(images, Never);
        QMetaObject::invokeMethod(
            writer, [&] { writer->start(QString::fromStdString(folder / "x_master.h5"), images); });
        detector.arm(Never);
        reader->startStream("127.0.0.1", simulator().port(), 60);
        const auto begin = Clock::now();
        std::thread exposure([&] { detector.trigger(Never); });
        QCoreApplication::exec();
        const double seconds = secondsSince(begin);
        exposure.join();
        reader->abort();
        reading.quit();
        reading.wait();
        writing.quit();
        writing.wait();
        const SeriesProgress progress = meter->progress();
        state.counters["received"] = double(progress.received);
        state.counters["written"] = double(progress.written);
        state.counters["lost"] = double(progress.lost);
        state.counters["frames/s"] = double(progress.written) / seconds;
    }
}
BENCHMARK(BM_SeriesToFile)->Arg(20)->Arg(100)->Iterations(1)->UseRealTime();

}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
