// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Statistics and histogram of whole frames under a 32-bit mask, against NumPy, std::sort and the
// plain loops in the same run. One thread but for the sort of floats; the mask is the same for all
// frames, as in a series.
#include "bench/HwyTarget.h"
#include "bench/Peer.h"
#include "imagelib/image/MaskBits.h"
#include "imagelib/image/SortPixels.h"
#include "logic/analysis/statistics/ComputeStatistics.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <vector>

namespace {

using morvend::imglib::MImage;
using tarvik::bench::Stopwatch;

struct Frame {
    MImage image;
    MImage mask;
};

/// Counts that fall from the beam centre outwards, with reflections, gaps and defective pixels.
template <class T>
Frame makeFrame(int megapixels)
{
    const int width = megapixels == 4 ? 2070 : 4148;
    const int height = megapixels == 4 ? 2167 : 4362;
    Frame frame{MImage(width, height, T(0)), MImage(width, height, 0U)};
    std::mt19937 random(1);
    auto* pixel = static_cast<T*>(frame.image.data());
    auto* mark = static_cast<unsigned*>(frame.mask.data());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++pixel, ++mark) {
            if (x % 1040 >= 1030 || y % 551 >= 514) {
                *pixel = std::numeric_limits<T>::is_signed ? T(-1) : std::numeric_limits<T>::max();
                *mark = 1;
                continue;
            }
            const double mean = 1 + 12 * std::exp(-std::hypot(x - width / 2, y - height / 2) / 500);
            const double noise = double(random() % 1000) / 500.0 - 1.0;
            *pixel = T(std::max(0.0, mean + 2 * std::sqrt(mean) * noise));
            if (random() % 2000 == 0)
                *pixel = T(random() % 30'000);
            if (random() % 5000 == 0)
                *mark = 4;
        }
    return frame;
}

template <class T>
const char* numpyType()
{
    return std::is_same_v<T, int>              ? "i4"
           : std::is_same_v<T, unsigned>       ? "u4"
           : std::is_same_v<T, unsigned short> ? "u2"
                                               : "f4";
}

/// The seconds that NumPy needs for each task.
class Peers {
public:
    Peers(const Frame& frame, const char* type)
        : _type(type)
    {
        const auto write = [&](const char* name, const MImage& image) {
            _folder.write(name, {static_cast<const char*>(image.cdata()), image.dataSize()});
        };
        write("image", frame.image);
        write("mask", frame.mask);
    }
    double seconds(const std::string& task) const
    {
        return tarvik::bench::pythonSeconds("peer_numpy.py",
                                            task + ' ' + _folder.path() + ' ' + _type + " 5");
    }

private:
    tarvik::tests::TempFolder _folder;
    std::string _type;
};

template <class Work>
double leastSeconds(int rounds, Work&& work)
{
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        least = std::min(
            least, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return least;
}

/// Statistics and histogram as plain loops by their definitions, 4000 bins around the mean.
template <class T>
void plainLoops(const Frame& frame)
{
    const T* pixels = frame.image.template pixels<T>();
    const unsigned* marks = frame.mask.template pixels<unsigned>();
    T minimum = pixels[0], maximum = pixels[0];
    unsigned zeros = 0, defective = 0, good = 0;
    double sum = 0, squares = 0;
    const std::size_t size = frame.image.size();
    for (std::size_t i = 0; i < size; ++i) {
        if (!maskrule::good(marks[i])) {
            defective += maskrule::defective(marks[i]);
            continue;
        }
        const T value = pixels[i];
        zeros += value == 0;
        sum += double(value);
        squares += double(value) * double(value);
        ++good;
        if (value > maximum)
            maximum = value;
        else if (!(value >= minimum))
            minimum = value;
    }
    const double lower = std::max(sum / good - 2000, double(std::numeric_limits<T>::lowest()));
    const double upper = lower + 4000;
    std::vector<unsigned> bins(4000);
    std::vector<T> below, above;
    for (std::size_t i = 0; i < size; ++i) {
        if (!maskrule::good(marks[i]))
            continue;
        const double value = double(pixels[i]);
        if (!(value >= lower))
            below.push_back(pixels[i]);
        else if (value >= upper)
            above.push_back(pixels[i]);
        else
            ++bins[std::min<std::size_t>(3999, std::size_t(value - double(long(lower))))];
    }
    std::sort(below.begin(), below.end());
    std::sort(above.begin(), above.end());
    benchmark::DoNotOptimize(bins.data());
    benchmark::DoNotOptimize(squares + zeros + defective + double(minimum) + double(maximum));
}

template <class T>
void statistics(benchmark::State& state)
{
    const Frame frame = makeFrame<T>(int(state.range(0)));
    const Peers peers(frame, numpyType<T>());
    const double read = peers.seconds("read");
    ImageStatistics result;
    const ComputeStatistics compute(&result);
    double least = 1;
    {
        Stopwatch watch(state, peers.seconds("statistics"));
        for (auto _ : state)
            watch.time([&] { compute.computeNumbers(frame.image, frame.mask); });
        least = leastSeconds(20, [&] { compute.computeNumbers(frame.image, frame.mask); });
    }
    state.counters["of_read_speed"] = read / least;
    state.counters["Gpx_per_s"] = double(frame.image.size()) / least / 1e9;
    MImage newMask = frame.mask;
    newMask.data();  // a copy, with an identity of its own
    state.counters["new_mask_ms"] =
        1e3 * leastSeconds(1, [&] { compute.computeNumbers(frame.image, newMask); });
}

template <class T>
void withHistogram(benchmark::State& state)
{
    const Frame frame = makeFrame<T>(int(state.range(0)));
    ImageStatistics result;
    const ComputeStatistics compute(&result);
    const auto both = [&] {
        compute.computeNumbers(frame.image, frame.mask);
        result.histogram.compute(frame.image, frame.mask, result.mean);
    };
    double least = 1;
    {
        const bool real = std::is_floating_point_v<T>;
        Stopwatch watch(state, Peers(frame, numpyType<T>()).seconds(real ? "sort" : "bincount"));
        for (auto _ : state)
            watch.time(both);
        least = leastSeconds(10, both);
    }
    const double plain = leastSeconds(2, [&] { plainLoops<T>(frame); });
    state.counters["x_plain"] = plain / least;
    if constexpr (std::is_floating_point_v<T>) {
        std::vector<T> good;
        for (std::size_t i = 0; i < frame.image.size(); ++i)
            if (maskrule::good(frame.mask.pixels<unsigned>()[i]))
                good.push_back(frame.image.pixels<T>()[i]);
        state.counters["x_std_sort"] =
            leastSeconds(1, [&] { std::sort(good.begin(), good.end()); }) / least;
    }
}

/// Float images by the distribution of their values.
float valueOf(const std::string& distribution, std::mt19937& random)
{
    const double number = (double(random()) + 0.5) / 4294967296.0;
    if (distribution == "uniform")
        return float(number);
    if (distribution == "narrow")
        return float(1000 + 0.5 * number);
    if (distribution == "exponential")
        return float(-50 * std::log(number));
    if (distribution == "counts")
        return std::floor(float(-5 * std::log(number)));
    return 7;  // constant
}

/// The histogram of one exponential distribution at three sizes of its values: some of 0.02 fall
/// into the bins, which are 1e-6 wide; larger and far smaller ones are all sorted.
void floatHistogram(benchmark::State& state)
{
    const int side = 2048;
    struct Size {
        const char* name;
        float mean;
        double least = std::numeric_limits<double>::infinity();
    } sizesOfValues[] = {{"mean_50_ms", 50}, {"mean_0.02_ms", 0.02F}, {"mean_1e-6_ms", 1e-6F}};
    const MImage mask(side, side, 0U);
    std::vector<MImage> images;
    for (const Size& size : sizesOfValues) {
        std::mt19937 random(5);
        MImage& image = images.emplace_back(side, side, 0.0F);
        std::generate_n(static_cast<float*>(image.data()), image.size(),
                        [&] { return valueOf("exponential", random) / 50 * size.mean; });
    }
    ImageStatistics result;
    for (auto _ : state)
        for (int round = 0; round < 5; ++round)
            for (std::size_t i = 0; i < images.size(); ++i)
                sizesOfValues[i].least =
                    std::min(sizesOfValues[i].least, leastSeconds(1, [&] {
                                 result.histogram.compute(images[i], mask, sizesOfValues[i].mean);
                             }));
    for (const Size& size : sizesOfValues)
        state.counters[size.name] = size.least * 1e3;
}

/// The sort alone, on one thread and on all, against std::sort.
void sortFloats(benchmark::State& state, const std::string& distribution)
{
    const auto size = static_cast<std::size_t>(state.range(0)) << 20;
    std::mt19937 random(5);
    std::vector<float> values(size);
    for (float& value : values)
        value = valueOf(distribution, random);
    MImage image(int(size), 1, 0.0f);
    auto* pixels = static_cast<float*>(image.data());
    // Least seconds of some rounds, each with the same unsorted values.
    const auto least = [&](int rounds, auto&& sort) {
        double seconds = std::numeric_limits<double>::infinity();
        for (int i = 0; i < rounds; ++i) {
            std::copy(values.begin(), values.end(), pixels);
            seconds = std::min(seconds, leastSeconds(1, sort));
        }
        return seconds;
    };
    const auto ours = [&] { morvend::image::sortPixels(pixels, size); };
    double one = 1, all = 1, standard = 1;
    for (auto _ : state) {
        all = least(4, ours);
        standard = least(2, [&] { std::sort(pixels, pixels + size); });
        const tbb::global_control alone(tbb::global_control::max_allowed_parallelism, 1);
        one = least(4, ours);
    }
    state.counters["one_thread_ms"] = one * 1e3;
    state.counters["all_threads_ms"] = all * 1e3;
    state.counters["x_std_sort"] = standard / one;
    state.counters["x_std_sort_all"] = standard / all;
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("megapixels")->Arg(4)->Arg(16)->Unit(benchmark::kMillisecond)->MinTime(0.1);
}

BENCHMARK(statistics<int>)->Apply(sizes);
BENCHMARK(statistics<unsigned int>)->Apply(sizes);
BENCHMARK(statistics<unsigned short>)->Apply(sizes);
BENCHMARK(statistics<float>)->Apply(sizes);
BENCHMARK(withHistogram<int>)->Apply(sizes);
BENCHMARK(withHistogram<unsigned int>)->Apply(sizes);
BENCHMARK(withHistogram<unsigned short>)->Apply(sizes);
BENCHMARK(withHistogram<float>)->Apply(sizes);
BENCHMARK(floatHistogram)->Iterations(1)->Unit(benchmark::kMillisecond);
#define TARVIK_SORT(Distribution)                                                                  \
    BENCHMARK_CAPTURE(sortFloats, Distribution, #Distribution)                                     \
        ->ArgName("megapixels")                                                                    \
        ->Arg(4)                                                                                   \
        ->Arg(16)                                                                                  \
        ->Unit(benchmark::kMillisecond)                                                            \
        ->Iterations(1)
TARVIK_SORT(uniform);
TARVIK_SORT(narrow);
TARVIK_SORT(exponential);
TARVIK_SORT(counts);
TARVIK_SORT(constant);
#undef TARVIK_SORT

}  // namespace

int main(int argc, char** argv)
{
    tarvik::bench::holdToTarget();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
