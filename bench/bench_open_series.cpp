// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Time to the first image of a numbered series: it must not grow with the number of files, except
// for one listing of their folder.
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/MImageWriter.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <random>

#include <dirent.h>

namespace {

using namespace morvend::imglib;

constexpr int Few = 10;
constexpr int Many = 10000;

/// A folder of that many CBF files of four megapixels. All are links to one file: what is measured
/// is the opening of one of them.
class Series {
public:
    explicit Series(int files)
    {
        std::minstd_rand random(1);
        std::poisson_distribution<int> counts(2);
        MImage image(2000, 2000, 0);
        auto* pixels = static_cast<int*>(image.data());
        for (std::size_t i = 0; i < image.size(); ++i)
            pixels[i] = counts(random);
        MImageWriter::write(image, name(1), MImageWriter::CBF);
        for (int number = 2; number <= files; ++number)
            std::filesystem::create_hard_link(name(1), name(number));
    }

    static const Series& of(int files)
    {
        static std::map<int, Series> all;
        return all.try_emplace(files, files).first->second;
    }

    const std::string& path() const { return _folder.path(); }
    std::string name(int number) const
    {
        std::string digits = std::to_string(number);
        digits.insert(0, 5 - digits.size(), '0');
        return _folder / ("lyso_1_" + digits + ".cbf");
    }

private:
    tarvik::tests::TempFolder _folder;
};

void firstImage(const Series& files)
{
    MImageSeries series(0);
    const int number = series.open(files.name(5));
    benchmark::DoNotOptimize(series.at(number));
}

void listing(const Series& files)
{
    DIR* folder = ::opendir(files.path().c_str());
    while (const dirent* entry = ::readdir(folder))
        benchmark::DoNotOptimize(entry->d_name[0]);
    ::closedir(folder);
}

template <class Work>
double seconds(const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_FirstImage(benchmark::State& state)
{
    const Series& files = Series::of(static_cast<int>(state.range(0)));
    for (auto _ : state)
        firstImage(files);
}

void BM_ListFolder(benchmark::State& state)
{
    const Series& files = Series::of(static_cast<int>(state.range(0)));
    for (auto _ : state)
        listing(files);
}

/// The three taken in turns, so that a change of the machine's speed meets all of them. The counter
/// is the time for many files, less one listing, over that for few; it is to stay below 1.5.
void BM_FirstImageOfManyAgainstFew(benchmark::State& state)
{
    const Series& few = Series::of(Few);
    const Series& many = Series::of(Many);
    double ofFew = 0;
    double ofMany = 0;
    double ofListing = 0;
    for (auto _ : state) {
        ofFew += seconds([&] { firstImage(few); });
        const double now = seconds([&] { firstImage(many); });
        ofListing += seconds([&] { listing(many); });
        ofMany += now;
        state.SetIterationTime(now);
    }
    state.counters["many_less_listing_over_few"] = (ofMany - ofListing) / ofFew;
}

}  // namespace

BENCHMARK(BM_FirstImage)->Arg(Few)->Arg(Many)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ListFolder)->Arg(Many)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FirstImageOfManyAgainstFew)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
