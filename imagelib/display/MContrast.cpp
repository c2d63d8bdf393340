// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MContrast: order statistics of a sample of the good pixels, and the levels that follow.
#include "imagelib/display/MContrast.h"

#include "imagelib/display/ContrastSample.h"
#include "imagelib/image/MImage.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace morvend::imglib {

namespace {

constexpr double flagGap = -1.0;
constexpr double flagBad = -2.0;

/// Drops negative values where they are flags: where all but one in a thousand pixels are -1 (gap),
/// -2 (bad) or not negative. Otherwise they are intensities, and all stay.
void dropFlags(ContrastSample& sample)
{
    const auto zero = std::lower_bound(sample.begin(), sample.end(), 0.0);
    const auto others = std::count_if(
        sample.begin(), zero, [](double value) { return value != flagGap && value != flagBad; });
    if (static_cast<std::size_t>(others) * 1000 <= sample.size())
        sample.erase(sample.begin(), zero);
}

/// The value of a sample that isn't empty with this share of the others below it.
double quantile(const ContrastSample& sample, double share)
{
    return sample[static_cast<std::size_t>(share * static_cast<double>(sample.size() - 1) + 0.5)];
}

// The quartiles of a normal distribution lie this many standard deviations from the median.
constexpr double quartile = 0.6744897501960817;

/// Standard deviation of the background of counts, at least that of photon noise.
double photonNoise(const ContrastSample& sample, double highest)
{
    const auto end = std::upper_bound(sample.begin(), sample.end(), highest);
    const auto number = static_cast<double>(end - sample.begin());
    return std::sqrt(std::max(std::reduce(sample.begin(), end) / number, 0.0));
}

/// The contribution of the others where more than half of the pixels are equal.
double spreadOfOthers(const ContrastSample& sample, double median, double factor)
{
    for (const double share : {0.95, 0.99, 0.999, 1.0})
        if (const double value = quantile(sample, share); value > median)
            return (value - median) / factor;
    for (const double share : {0.05, 0.01, 0.001, 0.0})
        if (const double value = quantile(sample, share); value < median)
            return (median - value) / factor;
    return (median == 0.0 ? 1.0 : std::abs(median)) / factor;
}

struct Levels {
    double background;
    double foreground;
};

Levels chooseLevels(const ContrastSample& sample, double factor, bool counts)
{
    const double median = quantile(sample, 0.5);
    const double lowest = sample.front();
    const double highest = sample.back();
    // The spread of the background: by the lower quartile first, as signal is on the upper side.
    double deviation = (median - quantile(sample, 0.25)) / quartile;
    if (deviation == 0.0)
        deviation = (quantile(sample, 0.75) - median) / quartile;
    const double least = counts ? photonNoise(sample, quantile(sample, 0.95)) : 0.0;
    const bool spread = deviation > least;
    if (!spread)
        deviation = counts ? least : spreadOfOthers(sample, median, factor);

    double foreground = median + factor * deviation;
    double background = median - factor / 2.0 * deviation;
    // Beyond the end of a distribution without tails there is nothing to show.
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
    // The display works with 32-bit floats: a narrower range would be empty.
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
    ContrastSample sample = contrastSample(image, mask, 8 * _bins);
    dropFlags(sample);
    if (sample.empty())
        return;
    const bool counts = image.type() != datatypes::FLOAT;
    const Levels levels = madeValid(chooseLevels(sample, _factor, counts), counts);
    background = levels.background;
    foreground = levels.foreground;
}

}  // namespace morvend::imglib
