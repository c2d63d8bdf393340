// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Look-up in bins and tails.
#include "logic/analysis/statistics/IntegratedHistogram.h"

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

template <class T>
unsigned int lookUp(const IntergrateHistogramPrivate& histogram, double x)
{
    if (std::isnan(x) || histogram.binCount == 0)
        return 0;
    T v = T(0);
    if constexpr (std::is_same_v<T, bool>) {
        v = std::floor(x) != 0;
    } else if constexpr (std::is_integral_v<T>) {
        // Nothing is below the lowest value of the type, and no value of the type can express that.
        if (std::floor(x) < static_cast<double>(std::numeric_limits<T>::min()))
            return 0;
        v = convertPixel<T>(std::floor(x));
    } else {
        v = static_cast<T>(x);
    }
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
