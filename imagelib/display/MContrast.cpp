// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MContrast: a sample of the good pixels, its order statistics, and the levels that follow.
#include "imagelib/display/MContrast.h"

#include "imagelib/image/MImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <vector>

namespace morvend::imglib {

namespace {

using Sample = std::vector<double>;

constexpr double flagGap = -1.0;
constexpr double flagBad = -2.0;

/// The test of the statistics: signed masks count by their absolute value, bool and floating ones
/// are good at 0.
template <class M>
bool isGood(M mask)
{
    if constexpr (std::is_same_v<M, bool> || std::is_floating_point_v<M>)
        return mask == M(0);
    else if constexpr (std::is_signed_v<M>)
        return ((mask < 0 ? 0U - static_cast<unsigned>(mask) : static_cast<unsigned>(mask)) & 31) ==
               0;
    else
        return (mask & 31) == 0;
}

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

/// Collects the good intensities of runs of pixels.
class Collector {
public:
    /// @param most  more values than twice these are thinned out evenly
    Collector(const MImage& image, const MImage* mask, std::size_t most)
        : _image(image)
        , _mask(mask)
        , _most(most)
    {
        _sample.reserve(std::min(image.size(), 2 * most + chunk));
    }

    void add(std::size_t first, std::size_t size)
    {
        std::array<bool, chunk> good;
        for (std::size_t part = 0; size > 0; first += part, size -= part) {
            part = std::min(size, chunk);
            _findGood(first, part, good.data());
            datatypes::dispatchPixelType(_image.type(), _image.typeBits(), [&]<class T>() {
                const T* pixels = _image.pixels<T>() + first;
                for (std::size_t i = 0; i < part; ++i)
                    if (good[i] && isIntensity(pixels[i]) && (_found++ & (_stride - 1)) == 0)
                        _sample.push_back(static_cast<double>(pixels[i]));
            });
            if (_sample.size() > 2 * _most)
                _thinOut();
        }
    }

    /// Asks the memory for pixels that are wanted soon: runs far apart wait for it otherwise.
    void announce(std::size_t first, std::size_t size) const
    {
        _fetch(_image, first, size);
        if (_mask)
            _fetch(*_mask, first, size);
    }

    Sample take() { return std::move(_sample); }

private:
    static constexpr std::size_t chunk = 1024;

    static void _fetch(const MImage& pixels, std::size_t first, std::size_t size)
    {
        const auto* bytes = static_cast<const std::byte*>(pixels.cdata());
        const std::size_t pixel = pixels.typeBits() / 8;
        __builtin_prefetch(bytes + first * pixel);
        __builtin_prefetch(bytes + (first + size) * pixel - 1);
    }

    void _findGood(std::size_t first, std::size_t size, bool* good) const
    {
        if (!_mask) {
            std::fill_n(good, size, true);
            return;
        }
        datatypes::dispatchPixelType(_mask->type(), _mask->typeBits(), [&]<class M>() {
            const M* mask = _mask->pixels<M>() + first;
            std::transform(mask, mask + size, good, isGood<M>);
        });
    }

    /// Keeps every second value, and of those to come every second of what was kept so far.
    void _thinOut()
    {
        for (std::size_t i = 0; 2 * i < _sample.size(); ++i)
            _sample[i] = _sample[2 * i];
        _sample.resize((_sample.size() + 1) / 2);
        _stride *= 2;
    }

    const MImage& _image;
    const MImage* _mask;
    const std::size_t _most;
    Sample _sample;
    std::size_t _found = 0;
    std::size_t _stride = 1;  // a power of two
};

/// A well-mixed number from a counter (the finaliser of SplitMix64).
std::uint64_t mixed(std::uint64_t counter)
{
    std::uint64_t z = (counter + 1) * 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

/// Good intensities of about `wanted` pixels all over the image: one short run at a random place in
/// each of many equal stretches, so that no pattern of modules or gaps is met or missed in step.
Sample takeSample(const MImage& image, const MImage* mask, std::size_t wanted)
{
    constexpr std::size_t run = 16;
    Collector some(image, mask, wanted);
    if (image.size() <= wanted) {
        some.add(0, image.size());
        return some.take();
    }
    const std::size_t runs = std::max<std::size_t>(wanted / run, 1);
    const std::size_t stretch = image.size() / runs;
    const std::size_t length = std::min(run, stretch);
    const auto place = [&](std::size_t i) {
        return i * stretch + mixed(i) % (stretch - length + 1);
    };
    constexpr std::size_t ahead = 8;
    for (std::size_t i = 0; i < runs; ++i) {
        if (i + ahead < runs)
            some.announce(place(i + ahead), length);
        some.add(place(i), length);
    }
    Sample sample = some.take();
    if (sample.size() >= wanted / 64)
        return sample;
    // Nearly all is masked: look at every pixel for those that aren't.
    Collector all(image, mask, wanted);
    all.add(0, image.size());
    return all.take();
}

/// Drops negative values where they are flags: where all but one in a thousand pixels are -1 (gap),
/// -2 (bad) or not negative. Otherwise they are intensities, and all stay.
void dropFlags(Sample& sample)
{
    const auto isOther = [](double value) {
        return value < 0.0 && value != flagGap && value != flagBad;
    };
    const auto others = std::count_if(sample.begin(), sample.end(), isOther);
    if (static_cast<std::size_t>(others) * 1000 <= sample.size())
        std::erase_if(sample, [](double value) { return value < 0.0; });
}

/// Order statistics of a sample that isn't empty. Each one divides the sample, so that those after
/// it are looked for in their own part only.
class Quantiles {
public:
    explicit Quantiles(Sample& sample)
        : _sample(sample)
    {}

    /// The value with this share of the others below it.
    double operator()(double share)
    {
        const auto place =
            static_cast<std::ptrdiff_t>(share * static_cast<double>(_sample.size() - 1) + 0.5);
        const auto above = std::ranges::lower_bound(_known, place);
        if (above == _known.end() || *above != place) {
            const std::ptrdiff_t first = above == _known.begin() ? 0 : *std::prev(above) + 1;
            const std::ptrdiff_t end = above == _known.end() ? std::ssize(_sample) : *above;
            std::nth_element(_sample.begin() + first, _sample.begin() + place,
                             _sample.begin() + end);
            _known.insert(above, place);
        }
        return _sample[static_cast<std::size_t>(place)];
    }

private:
    Sample& _sample;
    std::vector<std::ptrdiff_t> _known;  // places that hold their value, in order
};

// The quartiles of a normal distribution lie this many standard deviations from the median.
constexpr double quartile = 0.6744897501960817;

/// Standard deviation of the background of counts, at least that of photon noise.
double photonNoise(const Sample& sample, double highest)
{
    double sum = 0.0;
    double number = 0.0;
    for (const double value : sample)
        if (value <= highest) {
            sum += value;
            number += 1.0;
        }
    return std::sqrt(std::max(sum / number, 0.0));
}

/// Where more than half of the pixels are equal: what the others add.
double spreadOfOthers(Quantiles& quantile, double median, double factor)
{
    for (const double share : {0.95, 0.99, 0.999, 1.0})
        if (const double value = quantile(share); value > median)
            return (value - median) / factor;
    for (const double share : {0.05, 0.01, 0.001, 0.0})
        if (const double value = quantile(share); value < median)
            return (median - value) / factor;
    return (median == 0.0 ? 1.0 : std::abs(median)) / factor;
}

struct Levels {
    double background;
    double foreground;
};

Levels chooseLevels(Sample& sample, double factor, bool counts)
{
    Quantiles quantile(sample);
    const double median = quantile(0.5);
    const double lowest = *std::min_element(sample.begin(), sample.end());
    const double highest = *std::max_element(sample.begin(), sample.end());
    // The spread of the background: by the lower quartile first, as signal is on the upper side.
    double deviation = (median - quantile(0.25)) / quartile;
    if (deviation == 0.0)
        deviation = (quantile(0.75) - median) / quartile;
    const double least = counts ? photonNoise(sample, quantile(0.95)) : 0.0;
    const bool spread = deviation > least;
    if (!spread)
        deviation = counts ? least : spreadOfOthers(quantile, median, factor);

    double foreground = median + factor * deviation;
    double background = median - factor / 2.0 * deviation;
    // A distribution without tails ends where it ends.
    if (spread && highest > median && highest < median + 2.0 * deviation)
        foreground = highest;
    if (spread && lowest < median)
        background = std::max(background, lowest);
    // Counts start at zero wherever that costs little of the range.
    if (lowest >= 0.0 && background <= foreground / 4.0)
        background = 0.0;
    return {background, foreground};
}

/// Makes the levels finite and distinct, and those of counts integers.
Levels madeValid(Levels levels, bool counts)
{
    constexpr double limit = std::numeric_limits<double>::max() / 16.0;
    levels.background = std::clamp(levels.background, -limit, limit);
    levels.foreground = std::clamp(levels.foreground, -limit, limit);
    if (counts) {
        levels.background = std::floor(levels.background);
        levels.foreground = std::ceil(levels.foreground);
    }
    // The display works with 32-bit floats: a narrower range would be none.
    const double size = std::max(std::abs(levels.background), std::abs(levels.foreground));
    const double least = counts ? std::max(2.0, std::ceil(size * 1e-6))
                                : std::max(size * 1e-6, std::numeric_limits<double>::min());
    levels.foreground = std::max(levels.foreground, levels.background + least);
    return levels;
}

}  // namespace

MContrast::MContrast(double factor, std::size_t bins)
    : _factor(std::isfinite(factor) && factor > 0.0 ? factor : 1.0)
    , _bins(std::clamp<std::size_t>(bins, 16, 1U << 24))
{}

void MContrast::operator()(double& foreground, double& background, const MImage& image,
                           const MImage* mask) const
{
    if (mask && mask->empty())
        mask = nullptr;
    if (mask && mask->size() != image.size())
        throw MBadParameterException("A mask of " + std::to_string(mask->size()) +
                                     " pixels does not fit an image of " +
                                     std::to_string(image.size()));
    background = 0.0;
    foreground = 1.0;
    if (image.empty() || image.type() == datatypes::BOOL)
        return;
    Sample sample = takeSample(image, mask, 8 * _bins);
    dropFlags(sample);
    if (sample.empty())
        return;
    const bool counts = image.type() != datatypes::FLOAT;
    const Levels levels = madeValid(chooseLevels(sample, _factor, counts), counts);
    background = levels.background;
    foreground = levels.foreground;
}

}  // namespace morvend::imglib
