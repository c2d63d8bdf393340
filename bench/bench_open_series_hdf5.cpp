// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// First image of an HDF5 series of one block and of 1,000 blocks; plain frames against bare reads
// of as many bytes.
#include "imagelib/image/PixelBuffer.h"
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"
#include "tests/support/SourcePath.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace morvend::imglib;

/// The files, made once; all lie in the page cache.
std::string path(const std::string& name)
{
    static const tarvik::tests::TempFolder folder;
    static const int made =
        std::system((TARVIK_PYTHON " " + tarvik::tests::sourcePath("/bench/make_hdf5_series.py ") +
                     folder.path())
                        .c_str());
    if (made != 0)
        std::exit(1);
    return folder / name;
}

void firstImage(benchmark::State& state, const char* name)
{
    const std::string master = path(name);
    for (auto _ : state)
        benchmark::DoNotOptimize(openHdf5(ByteSource::open(master))->frame(0).cdata());
}
BENCHMARK_CAPTURE(firstImage, OneBlock, "one_master.h5")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstImage, ThousandBlocks, "proved_master.h5")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstImage, ThousandBlocksWithoutNumbers, "unproved_master.h5")
    ->Unit(benchmark::kMillisecond);

void plainFrame(benchmark::State& state, const char* name)
{
    const auto file = openHdf5(ByteSource::open(path(name)));
    std::size_t frame = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(file->frame(frame++ % 4).cdata());
}
BENCHMARK_CAPTURE(plainFrame, Contiguous, "contiguous.h5")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plainFrame, OneChunk, "chunked.h5")->Unit(benchmark::kMillisecond);

/// The same bytes by pread into memory that is there already.
void bareRead(benchmark::State& state)
{
    constexpr std::size_t bytes = std::size_t(4362) * 4148 * 4;
    const int file = ::open(path("contiguous.h5").c_str(), O_RDONLY | O_CLOEXEC);
    const auto memory = morvend::image::PixelBuffer::allocate(bytes);
    std::size_t frame = 0;
    for (auto _ : state) {
        const auto offset = static_cast<off_t>(2048 + frame++ % 4 * bytes);
        if (::pread(file, memory->data(), bytes, offset) != static_cast<ssize_t>(bytes))
            state.SkipWithError("short read");
        benchmark::ClobberMemory();
    }
    ::close(file);
}
BENCHMARK(bareRead)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
