// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Runs of pixels, which of them are good, and their intensities in order.
#include "imagelib/display/ContrastSample.h"

#include "imagelib/image/MImage.h"
#include "imagelib/image/MaskBits.h"
#include "imagelib/image/SortPixels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <tuple>

namespace morvend::imglib {

namespace {

/// Values that can't be intensities: not finite, or the highest of an unsigned type, which is what
/// detectors write where they have nothing.
template <class T>
bool isIntensity(T value)
{
    if constexpr (std::is_floating_point_v<T>)
        return std::isfinite(value);
    else if constexpr (std::is_unsigned_v<T> && !std::is_same_v<T, bool>)
        return value != std::numeric_limits<T>::max();
    else
        return true;
}

/// A well-mixed number from a counter (the finaliser of SplitMix64).
std::uint64_t mixed(std::uint64_t counter)
{
    std::uint64_t z = (counter + 1) * 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

/// Prefetches pixels that are needed soon; runs far from each other would wait for memory.
template <class T>
void announce(const T* first, std::size_t size)
{
    __builtin_prefetch(first);
    __builtin_prefetch(first + size - 1);
}

using Flags = std::vector<unsigned char>;

/// Sets a flag for each pixel of a range that the mask does not exclude.
void judge(const MImage& mask, std::size_t first, std::size_t size, unsigned char* good)
{
    datatypes::dispatchPixelType(mask.type(), mask.typeBits(), [&]<class M>() {
        const M* marks = mask.pixels<M>() + first;
        std::transform(marks, marks + size, good, [](M mark) { return maskrule::good(mark); });
    });
}

/// The starts of a sample's runs, all of one length, and which of their pixels are good.
class Runs {
public:
    Runs(std::size_t pixels, const MImage* mask, std::size_t wanted)
    {
        constexpr std::size_t Most = 16;
        const std::size_t runs = pixels <= wanted ? 1 : std::max<std::size_t>(wanted / Most, 1);
        const std::size_t stretch = pixels / runs;
        _length = runs == 1 ? stretch : std::min(Most, stretch);
        for (std::size_t i = 0; i < runs; ++i)
            _first.push_back(i * stretch + mixed(i) % (stretch - _length + 1));
        _good.assign(runs * _length, 1);
        for (std::size_t i = 0; mask && i < runs; ++i)
            judge(*mask, _first[i], _length, _good.data() + i * _length);
    }

    template <class T>
    ContrastSample intensities(const T* pixels) const
    {
        constexpr std::size_t Ahead = 16;
        ContrastSample sample(_good.size());
        const unsigned char* good = _good.data();
        double* end = sample.data();
        for (std::size_t i = 0; i < _first.size(); ++i) {
            announce(pixels + _first[std::min(i + Ahead, _first.size() - 1)], _length);
            const T* run = pixels + _first[i];
            // Always written, then kept or not: branches would be mispredicted at each gap.
            for (std::size_t k = 0; k < _length; ++k) {
                *end = static_cast<double>(run[k]);
                end += *good++ & static_cast<unsigned char>(isIntensity(run[k]));
            }
        }
        sample.resize(static_cast<std::size_t>(end - sample.data()));
        return sample;
    }

private:
    std::size_t _length = 0;
    std::vector<std::size_t> _first;
    Flags _good;
};

/// The runs for a mask; the last mask's are kept, as all images of a series share it.
std::shared_ptr<const Runs> runsFor(const MImage& image, const MImage* mask, std::size_t wanted)
{
    // Images of other types and sizes may show the same memory.
    const std::tuple key(image.size(), wanted, mask ? mask->identity() : 0,
                         mask ? mask->type() : datatypes::Type(), mask ? mask->typeBits() : 0);
    static std::mutex mutex;
    static std::remove_const_t<decltype(key)> known;
    static std::shared_ptr<const Runs> kept;
    {
        const std::lock_guard lock(mutex);
        if (kept && known == key)
            return kept;
    }
    auto runs = std::make_shared<const Runs>(image.size(), mask, wanted);
    const std::lock_guard lock(mutex);
    known = key;
    return kept = std::move(runs);
}

/// The good intensities of all pixels; more than twice `most` are thinned out evenly.
ContrastSample ofAllPixels(const MImage& image, const MImage* mask, std::size_t most)
{
    constexpr std::size_t Chunk = 1024;
    ContrastSample sample;
    Flags good(Chunk, 1);
    std::size_t found = 0;
    std::size_t stride = 1;  // a power of two
    for (std::size_t first = 0; first < image.size(); first += Chunk) {
        const std::size_t size = std::min(Chunk, image.size() - first);
        if (mask)
            judge(*mask, first, size, good.data());
        datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
            const T* pixels = image.pixels<T>() + first;
            for (std::size_t i = 0; i < size; ++i)
                if (good[i] && isIntensity(pixels[i]) && (found++ & (stride - 1)) == 0)
                    sample.push_back(static_cast<double>(pixels[i]));
        });
        if (sample.size() <= 2 * most)
            continue;
        // Keeps every second value, now and of those to come.
        for (std::size_t i = 0; 2 * i < sample.size(); ++i)
            sample[i] = sample[2 * i];
        sample.resize((sample.size() + 1) / 2);
        stride *= 2;
    }
    return sample;
}

}  // namespace

ContrastSample contrastSample(const MImage& image, const MImage* mask, std::size_t wanted)
{
    const auto runs = runsFor(image, mask, wanted);
    ContrastSample sample =
        datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
            return runs->intensities(image.pixels<T>());
        });
    if (image.size() > wanted && sample.size() < wanted / 64)
        sample = ofAllPixels(image, mask, wanted);  // nearly all pixels are masked
    image::sortPixels(sample.data(), sample.size());
    return sample;
}

}  // namespace morvend::imglib
