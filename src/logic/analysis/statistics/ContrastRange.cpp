// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/analysis/statistics/ContrastRange.h"

#include <algorithm>
#include <cmath>

namespace {

unsigned int rankOf(double part, unsigned int count)
{
    const double place = std::floor(std::clamp(part, 0.0, 1.0) * count);
    return std::min(static_cast<unsigned int>(place), count - 1);
}

/// Of the inner pixels: their values at many places that divide them evenly stand for all.
ContrastLevels aroundMean(const RankedPixels& pixels)
{
    constexpr int Places = 512;
    constexpr double Left = 0.001;  // at each end
    constexpr double Sigmas = 3;
    double sum = 0;
    double squares = 0;
    const double shift = pixels.valueAt(rankOf(0.5, pixels.count));
    for (int i = 0; i < Places; ++i) {
        const double part = Left + (1 - 2 * Left) * (i + 0.5) / Places;
        const double value = pixels.valueAt(rankOf(part, pixels.count)) - shift;
        sum += value;
        squares += value * value;
    }
    const double mean = sum / Places;
    const double sigma = std::sqrt(std::max(squares / Places - mean * mean, 0.0));
    return {std::max(shift + mean - Sigmas * sigma, pixels.valueAt(0)),
            std::min(shift + mean + Sigmas * sigma, pixels.valueAt(pixels.count - 1))};
}

/// The first value above another one, else one that is 1 larger.
double nextAbove(double value, const RankedPixels& pixels)
{
    unsigned int first = 0;
    unsigned int end = pixels.count;
    while (first < end) {
        const unsigned int middle = first + (end - first) / 2;
        if (pixels.valueAt(middle) > value)
            end = middle;
        else
            first = middle + 1;
    }
    return first < pixels.count ? pixels.valueAt(first) : value + 1;
}

}  // namespace

std::optional<ContrastLevels> contrastLevels(const RankedPixels& pixels, const ContrastRange& range)
{
    if (pixels.count == 0)
        return {};
    ContrastLevels levels = range.sigma
                                ? aroundMean(pixels)
                                : ContrastLevels{pixels.valueAt(rankOf(range.low, pixels.count)),
                                                 pixels.valueAt(rankOf(range.high, pixels.count))};
    if (!pixels.floating) {
        levels.background = std::floor(levels.background);
        levels.foreground = std::max(std::ceil(levels.foreground), levels.background + 1);
    } else if (!(levels.background < levels.foreground)) {
        levels.foreground = nextAbove(levels.background, pixels);
    }
    // Where neighbouring numbers are further apart than 1.
    if (!(levels.background < levels.foreground))
        levels.foreground = std::nextafter(levels.background, HUGE_VAL);
    return levels;
}

std::optional<ContrastLevels> contrastLevels(const IntegratedHistogram& histogram,
                                             const ContrastRange& range)
{
    const IntegratedHistogram::Ranks ranks = histogram.intensities();
    return contrastLevels(
        RankedPixels{ranks.end - ranks.begin, histogram.floatingPixels(),
                     [&](unsigned int rank) { return histogram.valueAt(ranks.begin + rank); }},
        range);
}
