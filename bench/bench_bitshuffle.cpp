// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One HDF5 frame from its file to its pixels, the raw read included, against h5py with the filter
// plug-ins of Debian, and plain LZ4 chunks against liblz4 alone.
#include "bench/HwyTarget.h"
#include "bench/Peer.h"
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Deflate.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/codec/Shuffle.h"
#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <random>

#include <lz4.h>

namespace {

using namespace morvend;
using namespace morvend::imglib::hdf5;
using codec::ChunkFilter;
using codec::ChunkPipeline;
using Clock = std::chrono::steady_clock;
using tarvik::bench::median;
using tarvik::bench::neededPythonSeconds;
using Bytes = std::vector<std::byte>;

constexpr std::size_t Frames = 3;

struct Size {
    const char* name;
    hsize_t width, height;
};
constexpr Size Sizes[] = {{"4Mpx", 2072, 2160}, {"16Mpx", 4152, 4336}};

/// A radial background of few counts with Poisson noise, some reflections, module gaps of all ones.
template <class T>
std::vector<T> makeFrame(const Size& size, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<T> frame(size.width * size.height);
    const double cx = static_cast<double>(size.width) / 2,
                 cy = static_cast<double>(size.height) / 2;
    for (hsize_t y = 0; y < size.height; ++y)
        for (hsize_t x = 0; x < size.width; ++x) {
            T& pixel = frame[y * size.width + x];
            if (x % 520 >= 512 || y % 272 >= 256) {
                pixel = static_cast<T>(~T(0));
                continue;
            }
            const double r = std::hypot(static_cast<double>(x) - cx, static_cast<double>(y) - cy);
            double left = 0.2 + 3.0 * std::exp(-r / 500), product = 1.0;
            for (left = std::exp(-left);
                 (product *= static_cast<double>(random()) * 0x1p-32) > left;)
                ++pixel;
            if (random() % 20000 == 0)
                pixel = static_cast<T>(random() % 30000);
        }
    return frame;
}

struct Kind {
    const char* name;
    std::vector<ChunkFilter> filters;  // with the element size to be filled in
};

Bytes encode(const Kind& kind, std::span<const std::byte> raw, std::size_t elementSize)
{
    if (kind.filters[0].id == codec::BitshuffleFilter)
        return codec::bitshuffleEncode(raw, elementSize);
    if (kind.filters[0].id == codec::Lz4Filter)
        return codec::lz4Encode(raw);
    if (kind.filters[0].id == codec::DeflateFilter)
        return codec::deflate(raw, 4);
    Bytes shuffled(raw.size());
    codec::byteShuffle(raw, elementSize, shuffled);
    return codec::deflate(shuffled, 4);
}

/// A file of Frames frames, one a chunk, and all that is needed to read it.
struct Stored {
    std::string path;
    ChunkPipeline pipeline;
    std::vector<Bytes> raw;
    std::size_t elementSize = 0;
};

template <class T>
Stored store(const std::string& path, const Size& size, Kind kind)
{
    Stored stored{path, {}, {}, sizeof(T)};
    const hsize_t all[] = {Frames, size.height, size.width}, one[] = {1, size.height, size.width};
    const File file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "create",
                    path);
    const Properties creation(H5Pcreate(H5P_DATASET_CREATE), "properties", path);
    check(H5Pset_chunk(creation.id(), 3, one), "chunk", path);
    for (ChunkFilter& filter : kind.filters) {
        if (filter.id == codec::ShuffleFilter)
            filter.values = {sizeof(T)};
        if (filter.id == codec::BitshuffleFilter)
            filter.values = {0, 3, sizeof(T), 0, 2};
        check(H5Pset_filter(creation.id(), static_cast<H5Z_filter_t>(filter.id), H5Z_FLAG_OPTIONAL,
                            filter.values.size(), filter.values.data()),
              "filter", path);
    }
    const Dataspace space(H5Screate_simple(3, all, nullptr), "space", path);
    const Dataset data(H5Dcreate2(file.id(), "data", sizeof(T) == 4 ? H5T_STD_U32LE : H5T_STD_U16LE,
                                  space.id(), H5P_DEFAULT, creation.id(), H5P_DEFAULT),
                       "data set", path);
    for (unsigned frame = 0; frame < Frames; ++frame) {
        const auto pixels = makeFrame<T>(size, frame);
        const auto raw = std::as_bytes(std::span(pixels));
        stored.raw.emplace_back(raw.begin(), raw.end());
        const Bytes chunk = encode(kind, raw, sizeof(T));
        const hsize_t at[] = {frame, 0, 0};
        check(H5Dwrite_chunk(data.id(), H5P_DEFAULT, 0, at, chunk.size(), chunk.data()), "write",
              path);
    }
    stored.pipeline = {kind.filters, sizeof(T), stored.raw[0].size()};
    return stored;
}

double since(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

template <class T>
void readFrames(benchmark::State& state, const Size& size, const Kind& kind)
{
    const tarvik::tests::TempFolder folder;
    const Stored stored = store<T>(folder / "frames.h5", size, kind);
    const double peer = neededPythonSeconds("peer_h5py.py", stored.path + " data 5");
    const File file(H5Fopen(stored.path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "open", stored.path);
    const Dataset data(H5Dopen2(file.id(), "data", H5P_DEFAULT), "open", stored.path);
    imglib::MImage image(static_cast<int>(size.width), static_cast<int>(size.height), T(0));
    auto packed = image::PixelBuffer::allocate(image.dataSize() + (1U << 20));
    std::vector<double> seconds;
    std::size_t frame = 0;
    for (auto _ : state) {
        const auto begin = Clock::now();
        const hsize_t at[] = {frame, 0, 0};
        hsize_t bytes = 0;
        check(H5Dget_chunk_storage_size(data.id(), at, &bytes), "size", stored.path);
        std::uint32_t mask = 0;
        check(H5Dread_chunk(data.id(), H5P_DEFAULT, at, &mask, packed->data()), "read",
              stored.path);
        codec::decodeChunk(stored.pipeline, {packed->data(), bytes}, mask,
                           {static_cast<std::byte*>(image.data()), image.dataSize()});
        seconds.push_back(since(begin));
        if (std::memcmp(image.cdata(), stored.raw[frame].data(), image.dataSize()) != 0)
            throw MRuntimeException("wrong pixels");
        state.SetIterationTime(seconds.back());
        frame = (frame + 1) % Frames;
    }
    state.counters["peer_ms"] = 1e3 * peer;
    state.counters["times_h5py"] = peer / median(seconds);
}

/// Our LZ4 chunks against one call of liblz4 for the same bytes.
void lz4Chunks(benchmark::State& state, const Size& size)
{
    const auto pixels = makeFrame<std::uint32_t>(size, 1);
    const auto raw = std::as_bytes(std::span(pixels));
    const Bytes chunk = codec::lz4Encode(raw);
    const auto out = image::PixelBuffer::allocate(raw.size());
    std::vector<double> ours, alone;
    for (auto _ : state) {
        auto begin = Clock::now();
        codec::lz4Decode(chunk, {out->data(), raw.size()});
        ours.push_back(since(begin));
        begin = Clock::now();
        LZ4_decompress_safe(reinterpret_cast<const char*>(chunk.data() + 16),
                            reinterpret_cast<char*>(out->data()),
                            static_cast<int>(chunk.size() - 16), static_cast<int>(raw.size()));
        alone.push_back(since(begin));
        state.SetIterationTime(ours.back());
    }
    state.counters["of_liblz4"] = median(ours) / median(alone);
}

/// Bitshuffle with LZ4 from memory, alone and against the LZ4 part of it, by number of threads.
void bitshuffleThreads(benchmark::State& state, const Size& size, unsigned threads)
{
    const auto pixels = makeFrame<std::uint32_t>(size, 1);
    const auto raw = std::as_bytes(std::span(pixels));
    const Bytes chunk = codec::bitshuffleEncode(raw, 4);
    const auto out = image::PixelBuffer::allocate(raw.size());
    for (auto _ : state)
        codec::bitshuffleDecode(chunk, 4, codec::BlockPacking::Lz4, 0, {out->data(), raw.size()},
                                threads);
    state.SetBytesProcessed(static_cast<std::int64_t>(raw.size()) * state.iterations());
}

void registerAll()
{
    static const Kind Kinds[] = {
        {"bitshuffle_lz4", {{codec::BitshuffleFilter, {}}}},
        {"lz4", {{codec::Lz4Filter, {}}}},
        {"gzip", {{codec::DeflateFilter, {4}}}},
        {"shuffle_gzip", {{codec::ShuffleFilter, {}}, {codec::DeflateFilter, {4}}}}};
    const auto add = [](const std::string& name, auto function) {
        benchmark::RegisterBenchmark(name.c_str(), function)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.2);
    };
    for (const Size& size : Sizes) {
        for (const Kind& kind : Kinds) {
            const std::string name = std::string("hdf5_") + kind.name + "_" + size.name;
            add(name + "_uint32",
                [&](benchmark::State& s) { readFrames<std::uint32_t>(s, size, kind); });
            add(name + "_uint16",
                [&](benchmark::State& s) { readFrames<std::uint16_t>(s, size, kind); });
        }
        add(std::string("lz4_chunk_") + size.name,
            [&](benchmark::State& s) { lz4Chunks(s, size); });
        for (const unsigned threads : {1U, 2U})
            benchmark::RegisterBenchmark(
                ("bitshuffle_memory_" + std::string(size.name) + "_threads" +
                 std::to_string(threads))
                    .c_str(),
                [&size, threads](benchmark::State& s) { bitshuffleThreads(s, size, threads); })
                ->UseRealTime()
                ->Unit(benchmark::kMillisecond)
                ->MinTime(0.2);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    tarvik::bench::holdToTarget();
    benchmark::Initialize(&argc, argv);
    registerFilters();
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
}
