// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Uncompressed EDF and TIFF files, from opening to the image, against plain reads of the same bytes
// into memory that is reused. The files are in the page cache. The counter "ratio" is the median of
// our times over that of the plain reads, measured by turns.
#include "bench/Peer.h"
#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/edf/EdfReader.h"
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"
#include "tests/imagelib/io/formats/tiff/TiffBuilder.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using tarvik::bench::median;
using tarvik::tests::TempFolder;
using tarvik::tests::TiffBuilder;
using Clock = std::chrono::steady_clock;

struct Size {
    const char* name;
    int width, height;
};
constexpr Size Sizes[] = {{"4Mpx", 2070, 2167}, {"16Mpx", 4148, 4362}};

const TempFolder& folder()
{
    static const TempFolder one;
    return one;
}

MImage picture(const Size& size)
{
    MImage image(size.width, size.height, 7u);
    auto* pixels = static_cast<unsigned*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i)
        pixels[i] = static_cast<unsigned>(i * 2654435761u >> 20);
    return image;
}

std::string pixelText(const Size& size)
{
    const MImage image = picture(size);
    return {static_cast<const char*>(image.cdata()), image.dataSize()};
}

std::string writeEdf(const Size& size, const char* order)
{
    std::string header = std::string("{\nByteOrder = ") + order +
                         " ;\nDataType = UnsignedInteger ;\nDim_1 = " + std::to_string(size.width) +
                         " ;\nDim_2 = " + std::to_string(size.height) + " ;\n";
    header.resize(510, ' ');
    return folder().write(std::string(size.name) + order + ".edf",
                          header + "}\n" + pixelText(size));
}

/// A TIFF file of strips of some rows; without a sample format unless `format` says it.
std::string writeStrips(const Size& size, const char* name, int rows, const char* format,
                        bool bigEndian)
{
    TiffBuilder builder(bigEndian);
    const std::uint64_t first = builder.data(pixelText(size));
    std::ostringstream offsets;
    std::ostringstream counts;
    for (int row = 0; row < size.height; row += rows) {
        const auto rowBytes = 4 * static_cast<std::uint64_t>(size.width);
        offsets << ' ' << first + static_cast<std::uint64_t>(row) * rowBytes;
        counts << ' ' << static_cast<std::uint64_t>(std::min(rows, size.height - row)) * rowBytes;
    }
    std::ostringstream table;
    table << "256 L " << size.width << "\n257 L " << size.height << "\n258 S 32\n262 S 1\n278 L "
          << rows << "\n273 L" << offsets.str() << "\n279 L" << counts.str() << '\n'
          << format;
    return folder().write(std::string(size.name) + name + ".tif",
                          builder.page(table.str()).bytes());
}

std::string writeOurs(const Size& size)
{
    const std::string path = folder() / (std::string(size.name) + "ours.tif");
    writeTiff(picture(size), path);
    return path;
}

double seconds(Clock::time_point since)
{
    return std::chrono::duration<double>(Clock::now() - since).count();
}

void plainRead(const std::string& path, image::PixelBuffer& target)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (::pread(file, target.data(), target.size(), 512) != static_cast<ssize_t>(target.size()))
        std::abort();
    ::close(file);
}

void readAgainstPlain(benchmark::State& state, const Size& size, const std::string& path,
                      ImageFileOpener open)
{
    const std::size_t bytes = picture(size).dataSize();
    const auto reused = image::PixelBuffer::allocate(bytes - 512);
    std::vector<double> plain;
    std::vector<double> ours;
    const auto read = [&] {
        const MImage image = open(ByteSource::open(path))->frame(0);
        if (image.dataSize() != bytes)
            std::abort();
        benchmark::DoNotOptimize(image.cdata());
    };
    read();
    plainRead(path, *reused);
    for (auto _ : state) {
        auto start = Clock::now();
        plainRead(path, *reused);
        plain.push_back(seconds(start));
        start = Clock::now();
        read();
        ours.push_back(seconds(start));
        state.SetIterationTime(ours.back());
    }
    state.counters["ratio"] = median(ours) / median(plain);
    state.counters["GB/s"] = static_cast<double>(bytes) / median(ours) / 1e9;
}

void add(const char* kind, const Size& size, const std::string& path, ImageFileOpener open)
{
    const std::string name = std::string(kind) + "/" + size.name;
    benchmark::RegisterBenchmark(
        name.c_str(), [=](benchmark::State& state) { readAgainstPlain(state, size, path, open); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (const Size& size : Sizes) {
        add("edf", size, writeEdf(size, "LowByteFirst"), openEdf);
        add("edf_foreign_order", size, writeEdf(size, "HighByteFirst"), openEdf);
        add("tiff_ours", size, writeOurs(size), openTiff);
        add("tiff_strips_of_8_rows", size, writeStrips(size, "strips", 8, "339 S 1", false),
            openTiff);
        add("tiff_foreign_order", size, writeStrips(size, "foreign", 8, "339 S 1", true), openTiff);
        add("tiff_sign_untold", size, writeStrips(size, "untold", size.height, "", false),
            openTiff);
    }
    benchmark::RunSpecifiedBenchmarks();
}
