// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Plain loops.
#include "bench/PlainChain.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <dlfcn.h>

namespace tarvik::bench {

using morvend::imglib::MImage;
using namespace morvend::imglib::hdf5;

namespace {

/// Geometry of a thumbnail: cells of `length` pixels.
struct Cells {
    Cells(int itsWidth, int itsHeight)
        : width(itsWidth)
        , height(itsHeight)
        , thumbWidth(width >= height ? std::min(width, 200)
                                     : width * std::min(height, 200) / height)
        , thumbHeight(width >= height ? height * std::min(width, 200) / width
                                      : std::min(height, 200))
        , length(1 / (double(thumbWidth) / width))
    {}
    int edge(int i, int limit) const { return std::min(int(i * length + 0.5), limit); }

    int width, height, thumbWidth, thumbHeight;
    double length;
};

struct Numbers {
    std::uint32_t minimum = 0, maximum = 0;
    unsigned zeros = 0, defective = 0, saturated = 0, good = 0;
    double sum = 0, squares = 0;
};

Numbers statistics(const std::uint32_t* pixels, const std::uint32_t* mask, std::size_t size,
                   std::uint32_t saturation)
{
    Numbers n;
    n.minimum = n.maximum = pixels[0];
    for (std::size_t i = 0; i < size; ++i) {
        if ((mask[i] & 31) != 0) {
            if ((mask[i] & 30) != 0)
                ++n.defective;
            continue;
        }
        const std::uint32_t value = pixels[i];
        if (value == 0)
            ++n.zeros;
        else if (value >= saturation)
            ++n.saturated;
        n.sum += value;
        n.squares += double(value) * double(value);
        ++n.good;
        if (value > n.maximum)
            n.maximum = value;
        else if (!(value >= n.minimum))
            n.minimum = value;
    }
    return n;
}

double histogram(const std::uint32_t* pixels, const std::uint32_t* mask, std::size_t size,
                 double mean)
{
    constexpr std::size_t Bins = 4000;
    std::vector<unsigned> bins(Bins);
    const std::unique_ptr<std::uint32_t[]> low(new std::uint32_t[size]);
    const std::unique_ptr<std::uint32_t[]> high(new std::uint32_t[size]);
    const double lower = std::max(mean - Bins / 2.0, 0.0);
    const double upper = std::min(mean + Bins / 2.0, 4294967295.0);
    std::uint32_t* lowEnd = low.get();
    std::uint32_t* highEnd = high.get();
    for (std::size_t i = 0; i < size; ++i) {
        if ((mask[i] & 31) != 0)
            continue;
        const std::uint32_t value = pixels[i];
        if (!(value >= lower))
            *lowEnd++ = value;
        else if (value >= upper)
            *highEnd++ = value;
        else
            ++bins[std::min<std::size_t>(Bins - 1, value - std::uint32_t(lower))];
    }
    std::sort(low.get(), lowEnd);
    std::sort(high.get(), highEnd);
    const std::vector<std::uint32_t> below(low.get(), lowEnd);
    const std::vector<std::uint32_t> above(high.get(), highEnd);
    bins[0] += unsigned(below.size());
    for (std::size_t i = 1; i < Bins; ++i)
        bins[i] += bins[i - 1];
    return double(bins.back()) + double(above.size());
}

double thumbnail(const std::uint32_t* pixels, const Cells& cells)
{
    std::vector<std::uint32_t> thumb;
    for (int y = 0; y < cells.thumbHeight; ++y)
        for (int x = 0; x < cells.thumbWidth; ++x) {
            double sum = 0;
            int count = 0;
            for (int v = cells.edge(y, cells.height); v < cells.edge(y + 1, cells.height); ++v)
                for (int u = cells.edge(x, cells.width); u < cells.edge(x + 1, cells.width); ++u) {
                    sum += pixels[std::size_t(v) * std::size_t(cells.width) + std::size_t(u)];
                    ++count;
                }
            thumb.push_back(count ? std::uint32_t(sum / count) : 0);
        }
    return thumb[thumb.size() / 2];
}

std::uint32_t firstMark(const std::uint32_t* mask, const Cells& cells, int x, int y)
{
    for (int v = cells.edge(y, cells.height); v < cells.edge(y + 1, cells.height); ++v)
        for (int u = cells.edge(x, cells.width); u < cells.edge(x + 1, cells.width); ++u)
            if (const auto mark = mask[std::size_t(v) * std::size_t(cells.width) + std::size_t(u)])
                return mark;
    return 0;
}

/// Lets the library decode bitshuffle by the system's plug-in, whatever is registered.
void loadSystemFilter()
{
    static const bool loaded = [] {
        unsigned paths = 0;
        H5PLsize(&paths);
        for (unsigned i = 0; i < paths; ++i) {
            char path[4096] = {};
            H5PLget(i, path, sizeof path - 1);
            void* library =
                ::dlopen((std::string(path) + "/libh5bshuf.so").c_str(), RTLD_NOW | RTLD_LOCAL);
            using Info = const void* (*)();
            const auto info =
                library ? reinterpret_cast<Info>(::dlsym(library, "H5PLget_plugin_info")) : nullptr;
            if (info && H5Zregister(info()) >= 0)
                return true;
        }
        return false;
    }();
    if (!loaded)
        throw morvend::MRuntimeException("The system's bitshuffle filter is not installed");
}

}  // namespace

MImage plainMaskThumbnail(const MImage& mask)
{
    const Cells cells(mask.width(), mask.height());
    MImage result(cells.thumbWidth, cells.thumbHeight, 0U);
    auto* out = static_cast<std::uint32_t*>(result.data());
    for (int y = 0; y < cells.thumbHeight; ++y)
        for (int x = 0; x < cells.thumbWidth; ++x)
            *out++ = firstMark(mask.pixels<unsigned>(), cells, x, y);
    return result;
}

struct PlainChain::Hdf5 {
    Hdf5(const std::string& path, const std::string& dataset)
        : file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "open", path)
        , data(H5Dopen2(file.id(), dataset.c_str(), H5P_DEFAULT), "open", path)
    {}
    const File file;
    const Dataset data;
};

PlainChain::PlainChain(const std::string& file, const std::string& dataset, const MImage& mask)
    : _hdf5(std::make_unique<Hdf5>(file, dataset))
    , _mask(mask)
{
    loadSystemFilter();
}

PlainChain::~PlainChain() = default;

double PlainChain::run(std::size_t frame) const
{
    const std::size_t size = _mask.size();
    const hsize_t start[] = {frame, 0, 0};
    const hsize_t count[] = {1, hsize_t(_mask.height()), hsize_t(_mask.width())};
    const Dataspace stored(H5Dget_space(_hdf5->data.id()));
    const Dataspace memory(H5Screate_simple(3, count, nullptr));
    check(H5Sselect_hyperslab(stored.id(), H5S_SELECT_SET, start, nullptr, count, nullptr),
          "select", "frame");
    const std::unique_ptr<std::uint32_t[]> pixels(new std::uint32_t[size]);
    check(H5Dread(_hdf5->data.id(), H5T_NATIVE_UINT32, memory.id(), stored.id(), H5P_DEFAULT,
                  pixels.get()),
          "read", "frame");
    const auto* mask = _mask.pixels<unsigned>();
    const MImage maskThumbnail = plainMaskThumbnail(_mask);
    const Numbers numbers = statistics(pixels.get(), mask, size, 0xfffffffe);
    benchmark::DoNotOptimize(histogram(pixels.get(), mask, size, numbers.sum / numbers.good));
    benchmark::DoNotOptimize(thumbnail(pixels.get(), Cells(_mask.width(), _mask.height())));
    benchmark::DoNotOptimize(maskThumbnail.cdata());
    return numbers.sum;
}

}  // namespace tarvik::bench
