// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Look-up in bins and tails.
#include "logic/analysis/statistics/IntegratedHistogram.h"

#include "imagelib/image/GapValues.h"
#include "imagelib/image/PixelTypes.h"
#include "logic/analysis/statistics/HistogramCompute.h"
#include "logic/analysis/statistics/IntegerBins.h"
#include "logic/support/Assert.h"

#include <algorithm>
#include <cmath>
#include <limits>

using morvend::datatypes::convertPixel;
using morvend::imglib::MImage;

namespace {

/// Number of elements of a sorted tail that are at most `value`.
template <class T>
unsigned int countUpTo(const MImage::BasicImage& tail, T value)
{
    const T* data = static_cast<const T*>(tail.cdata());
    const T* upperBound = std::upper_bound(data, data + tail.size(), value);
    assert(upperBound >= data);
    return static_cast<unsigned int>(upperBound - data);
}

/// Number of pixels of value at most `v`.
template <class T>
unsigned int countPixels(const IntergrateHistogramPrivate& histogram, T v)
{
    const auto number = static_cast<double>(v);
    if (number < histogram.lower)
        return histogram.below.empty() ? 0 : countUpTo(histogram.below, v);
    const unsigned int binned = histogram.bins[histogram.binCount - 1];
    const auto upToTail = [&] {
        return histogram.above.empty() ? binned : countUpTo(histogram.above, v) + binned;
    };
    if (number >= histogram.upper)
        return upToTail();
    if constexpr (std::is_integral_v<T>) {
        const IntegerBins<T> bins(histogram.lower, histogram.binCount);
        return bins.beyond(v) ? upToTail() : histogram.bins[bins.of(v)];
    } else {
        const double i = (number - histogram.lower) * histogram.binsPerUnit;
        if (!(i >= 0) || i >= static_cast<double>(histogram.binCount))
            return 0;
        return histogram.bins[static_cast<std::size_t>(i)];
    }
}

template <class T>
unsigned int lookUp(const IntergrateHistogramPrivate& histogram, double x)
{
    if (std::isnan(x) || histogram.binCount == 0)
        return 0;
    if constexpr (std::is_same_v<T, bool>) {
        return countPixels<T>(histogram, std::floor(x) != 0);
    } else if constexpr (std::is_integral_v<T>) {
        // Nothing is below the lowest value of the type, and no value of the type can express that.
        if (std::floor(x) < static_cast<double>(std::numeric_limits<T>::min()))
            return 0;
        return countPixels(histogram, convertPixel<T>(std::floor(x)));
    } else {
        return countPixels(histogram, static_cast<T>(x));
    }
}

unsigned int binnedCount(const IntergrateHistogramPrivate& histogram)
{
    return histogram.binCount == 0 ? 0 : histogram.bins[histogram.binCount - 1];
}

template <class T>
double valueOfRank(const IntergrateHistogramPrivate& histogram, unsigned int rank)
{
    const auto of = [](const MImage::BasicImage& tail, std::size_t i) {
        return static_cast<double>(static_cast<const T*>(tail.cdata())[i]);
    };
    if (rank < histogram.below.size())
        return of(histogram.below, rank);
    const unsigned int binned = binnedCount(histogram);
    if (rank >= binned) {
        assert(rank - binned < histogram.above.size());
        return of(histogram.above, rank - binned);
    }
    const unsigned int* const bins = histogram.bins.get();
    const auto bin =
        static_cast<double>(std::upper_bound(bins, bins + histogram.binCount, rank) - bins);
    if constexpr (std::is_same_v<T, bool>)
        return histogram.lower != 0 ? 1 : bin;
    else if constexpr (std::is_integral_v<T>)
        return static_cast<double>(convertPixel<T>(histogram.lower)) + bin;
    else
        return histogram.lower + (bin + 0.5) / histogram.binsPerUnit;
}

template <class T>
IntegratedHistogram::Ranks ranksOfIntensities(const IntergrateHistogramPrivate& histogram)
{
    using Rule = morvend::imglib::GapRule<T>;
    using Limits = std::numeric_limits<T>;
    const auto all = static_cast<unsigned int>(binnedCount(histogram) + histogram.above.size());
    IntegratedHistogram::Ranks ranks{0, all};
    if (all == 0)
        return ranks;
    const auto before = [](T value) {
        if constexpr (std::is_floating_point_v<T>)
            return std::nextafter(value, Limits::lowest());
        else
            return static_cast<T>(value - 1);
    };
    const auto upTo = [&](T value) { return countPixels(histogram, value); };
    if constexpr (Rule::Top)
        ranks.end = upTo(before(Rule::FirstTop));
    if constexpr (Rule::Negatives) {
        const auto equal = [&](T value) { return upTo(value) - upTo(before(value)); };
        const unsigned int negative = upTo(before(T(0)));
        if (negative == equal(T(-1)) + equal(T(-2)))
            ranks.begin = negative;
    }
    if constexpr (Limits::has_infinity)
        ranks.begin = std::max(ranks.begin, upTo(-Limits::infinity()));
    return ranks.begin < ranks.end ? ranks : IntegratedHistogram::Ranks{0, all};
}

}  // namespace

IntegratedHistogram::IntegratedHistogram()
    : _d(std::make_unique<IntergrateHistogramPrivate>())
{}

IntegratedHistogram::~IntegratedHistogram() = default;

void IntegratedHistogram::compute(const MImage& image, const MImage& mask, double mean)
{
    HistogramCompute(_d.get(), mean).compute(image, mask);
}

template <class T>
void IntegratedHistogram::compute(const ValueCounts<T>& counts, double mean)
{
    HistogramCompute(_d.get(), mean).fill(counts);
}

template void IntegratedHistogram::compute(const ValueCounts<unsigned char>&, double);
template void IntegratedHistogram::compute(const ValueCounts<unsigned short>&, double);
template void IntegratedHistogram::compute(const ValueCounts<short>&, double);
template void IntegratedHistogram::compute(const ValueCounts<unsigned int>&, double);
template void IntegratedHistogram::compute(const ValueCounts<int>&, double);

unsigned int IntegratedHistogram::value(double x) const
{
    return morvend::datatypes::dispatchPixelType(_d->below.type(), _d->below.typeBits(),
                                                 [&]<class T>() { return lookUp<T>(*_d, x); });
}

double IntegratedHistogram::valueAt(unsigned int rank) const
{
    return morvend::datatypes::dispatchPixelType(
        _d->below.type(), _d->below.typeBits(),
        [&]<class T>() { return valueOfRank<T>(*_d, rank); });
}

IntegratedHistogram::Ranks IntegratedHistogram::intensities() const
{
    return morvend::datatypes::dispatchPixelType(
        _d->below.type(), _d->below.typeBits(),
        [&]<class T>() { return ranksOfIntensities<T>(*_d); });
}

bool IntegratedHistogram::floatingPixels() const
{
    return _d->below.type() == morvend::datatypes::FLOAT;
}

double IntegratedHistogram::coarseness() const
{
    return floatingPixels() && _d->binCount != 0 ? 0.5 / _d->binsPerUnit : 0;
}
