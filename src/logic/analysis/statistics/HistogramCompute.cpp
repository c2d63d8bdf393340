// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The histogram's counting pass, written once over all pixel types.
#include "logic/analysis/statistics/HistogramCompute.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/statistics/MaskRule.h"
#include "logic/analysis/statistics/SortPixels.h"

#include <algorithm>
#include <cmath>
#include <limits>

using morvend::image::MBasicImage;
using morvend::image::PixelBuffer;
using morvend::image::PixelBufferPtr;
using morvend::imglib::MImage;

namespace {

/// Bins and resolution by pixel type.
template <class T>
struct Binning {
    static constexpr unsigned long count = std::is_floating_point_v<T> ? 100'000 : 1000 * sizeof(T);
    static constexpr double resolution = std::is_same_v<T, float>    ? double(1e-6F)
                                         : std::is_same_v<T, double> ? 1e-9
                                                                     : 1.0;
    static constexpr double binsPerUnit = std::is_same_v<T, float>    ? 1e6
                                          : std::is_same_v<T, double> ? 999999999.9999999
                                                                      : 1.0;
    // For floating types the smallest positive number: every negative pixel lies in the tail.
    static constexpr double floor = static_cast<double>(std::numeric_limits<T>::min());
    static constexpr double ceiling = static_cast<double>(std::numeric_limits<T>::max());
};

/// Bin of a value in the binned range.
template <class T>
class BinIndex {
public:
    explicit BinIndex(double lower)
        : _lower(lower)
        , _first(morvend::datatypes::convertPixel<T>(lower))
    {}
    std::size_t operator()(T value) const
    {
        if constexpr (std::is_same_v<T, bool>)
            return static_cast<std::size_t>(value - (_lower != 0));
        else if constexpr (std::is_integral_v<T>)
            return static_cast<std::size_t>(value - _first);
        else
            return static_cast<std::size_t>((static_cast<double>(value) - _lower) *
                                            Binning<T>::binsPerUnit);
    }

private:
    double _lower;
    T _first;  // the truncated lower end
};

template <class T>
MBasicImage<> sortedTail(T* values, std::size_t count)
{
    sortPixels(values, count);
    return {values, count};
}

}  // namespace

template <class L, class R>
void HistogramCompute::operator()(const MImage& image, const MImage& mask) const
{
    using Bins = Binning<L>;
    const double half = static_cast<double>(Bins::count) / 2;
    const double low = (_mean - half) * Bins::resolution;
    const double high = (_mean + half) * Bins::resolution;
    // So phrased that a mean that is no number yields the limits of the type.
    const double lower = low > Bins::floor ? low : Bins::floor;
    const double upper = high < Bins::ceiling ? high : Bins::ceiling;

    auto bins = std::make_unique<unsigned int[]>(Bins::count);
    const PixelBufferPtr lowScratch = PixelBuffer::allocate(image.size() * sizeof(L));
    const PixelBufferPtr highScratch = PixelBuffer::allocate(image.size() * sizeof(L));
    L* below = reinterpret_cast<L*>(lowScratch->data());
    L* above = reinterpret_cast<L*>(highScratch->data());
    std::size_t belowCount = 0;
    std::size_t aboveCount = 0;
    const BinIndex<L> binOf(lower);
    const L* pixels = image.pixels<L>();
    const R* marks = mask.pixels<R>();
    for (std::size_t i = 0; i < image.size(); ++i) {
        const L value = pixels[i];
        if (!maskrule::good(marks[i]) || value != value)
            continue;
        const auto number = static_cast<double>(value);
        if (!(number >= lower))
            below[belowCount++] = value;
        else if (number >= upper)
            above[aboveCount++] = value;
        else
            ++bins[std::min<std::size_t>(Bins::count - 1, binOf(value))];
    }

    _target->lower = lower;
    _target->upper = upper;
    _target->binCount = Bins::count;
    _target->binsPerUnit = Bins::binsPerUnit;
    _target->below = sortedTail(below, belowCount);
    _target->above = sortedTail(above, aboveCount);
    bins[0] += static_cast<unsigned int>(belowCount);
    for (unsigned long i = 1; i < Bins::count; ++i)
        bins[i] += bins[i - 1];
    _target->bins = std::move(bins);
}

void HistogramCompute::compute(const MImage& image, const MImage& mask) const
{
    if (image.size() != mask.size())
        throw morvend::MBadParameterException("The mask has another size than its image");
    morvend::datatypes::BinaryDispatcher<const HistogramCompute&, const MImage, const MImage,
                                         void>::Go(image, mask, *this);
}
