// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The histogram's counting pass, written once over all pixel types.
#include "logic/analysis/statistics/HistogramCompute.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "imagelib/image/SortPixels.h"
#include "logic/analysis/statistics/GoodPixels.h"
#include "logic/analysis/statistics/HistogramBlocks.h"
#include "logic/analysis/statistics/IntegerBins.h"
#include "logic/analysis/statistics/ValueCounts.h"

#include <algorithm>
#include <array>
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
    static constexpr unsigned long Count = std::is_floating_point_v<T> ? 100'000 : 1000 * sizeof(T);
    static constexpr double Resolution = std::is_same_v<T, float>    ? double(1e-6F)
                                         : std::is_same_v<T, double> ? 1e-9
                                                                     : 1.0;
    static constexpr double BinsPerUnit = std::is_same_v<T, float>    ? 1e6
                                          : std::is_same_v<T, double> ? 999999999.9999999
                                                                      : 1.0;
    // For floating types the smallest positive number: every negative pixel is in the tail.
    static constexpr double Floor = static_cast<double>(std::numeric_limits<T>::min());
    static constexpr double Ceiling = static_cast<double>(std::numeric_limits<T>::max());
};

/// Bin of a floating value in the binned range.
template <class T>
class FloatBins {
public:
    FloatBins(double lower, std::size_t count)
        : _lower(lower)
        , _last(static_cast<double>(count - 1))
    {}
    std::size_t of(T value) const
    {
        // Clamped before the conversion: the range of a NaN mean extends far beyond the
        // bins.
        return static_cast<std::size_t>(
            std::min((static_cast<double>(value) - _lower) * Binning<T>::BinsPerUnit, _last));
    }
    bool beyond(T) const { return false; }

private:
    double _lower;
    double _last;
};

template <class T>
using Bins = std::conditional_t<std::is_integral_v<T>, IntegerBins<T>, FloatBins<T>>;

/// Values outside the binned range, in scratch memory for all pixels.
template <class T>
class Tail {
public:
    explicit Tail(std::size_t most)
        : _memory(PixelBuffer::allocate(most * sizeof(T)))
        , _most(most)
        , _values(reinterpret_cast<T*>(_memory->data()))
    {}
    T* values() { return _values; }
    std::size_t size() const { return _size; }
    void resize(std::size_t size) { _size = size; }
    void add(T value, std::size_t times = 1)
    {
        std::fill_n(_values + _size, times, value);
        _size += times;
    }
    /// The values in order, in memory of their own unless they fill most of the scratch.
    MBasicImage<> sorted()
    {
        using namespace morvend::datatypes;
        morvend::image::sortPixels(_values, _size);
        if (_size > _most / 2)
            return {std::move(_memory), typeOf<T>, bitsOf<T>, _size};
        return {_values, _size};
    }

private:
    PixelBufferPtr _memory;
    std::size_t _most;
    T* _values;
    std::size_t _size = 0;
};

/// Bins and tails while they are filled.
template <class T>
class Filling {
public:
    Filling(double mean, std::size_t pixels)
        : _below(pixels)
        , _above(pixels)
        , _bins(std::make_unique<unsigned int[]>(Binning<T>::Count))
        , _lower(_lowerEnd(mean))
        , _upper(_upperEnd(mean))
        , _places(_lower, Binning<T>::Count)
    {}

    void add(T value, unsigned int times = 1)
    {
        const auto number = static_cast<double>(value);
        if (!(number >= _lower))
            _below.add(value, times);
        else if (number >= _upper || _places.beyond(value))
            _above.add(value, times);
        else
            addBinned(value, times);
    }
    void addBinned(T value, unsigned int times = 1) { _bins[_places.of(value)] += times; }
    Tail<T>& below() { return _below; }
    Tail<T>& above() { return _above; }
    double lower() const { return _lower; }
    double upper() const { return _upper; }

    void finish(IntergrateHistogramPrivate& target)
    {
        target.lower = _lower;
        target.upper = _upper;
        target.binCount = Binning<T>::Count;
        target.binsPerUnit = Binning<T>::BinsPerUnit;
        _bins[0] += static_cast<unsigned int>(_below.size());
        for (unsigned long i = 1; i < Binning<T>::Count; ++i)
            _bins[i] += _bins[i - 1];
        target.below = _below.sorted();
        target.above = _above.sorted();
        target.bins = std::move(_bins);
    }

private:
    // Phrased so that a NaN mean yields the limits of the type.
    static double _lowerEnd(double mean)
    {
        const double low = (mean - Half) * Binning<T>::Resolution;
        return low > Binning<T>::Floor ? low : Binning<T>::Floor;
    }
    static double _upperEnd(double mean)
    {
        // Pixels that would share a few bins are in the tails, of which each value counts.
        if (std::is_floating_point_v<T> && std::abs(mean) < LeastMean)
            return _lowerEnd(mean);
        const double high = (mean + Half) * Binning<T>::Resolution;
        return high < Binning<T>::Ceiling ? high : Binning<T>::Ceiling;
    }
    static constexpr double Half = static_cast<double>(Binning<T>::Count) / 2;
    static constexpr double LeastMean = 1000 * Binning<T>::Resolution;

    Tail<T> _below, _above;
    std::unique_ptr<unsigned int[]> _bins;
    double _lower, _upper;
    Bins<T> _places;
};

/// Smallest float at or above a number of its range.
float floatAtLeast(double number)
{
    const auto nearest = static_cast<float>(number);
    return static_cast<double>(nearest) < number
               ? std::nextafter(nearest, std::numeric_limits<float>::infinity())
               : nearest;
}

constexpr std::size_t BlockPixels = histogramblocks::BlockPixels;
constexpr std::size_t Padding = histogramblocks::Padding;

/// Nearly all floats are in the tails.
void fillFloats(Filling<float>& filling, const float* pixels, const GoodPixels& good)
{
    std::array<float, BlockPixels + Padding> binned;
    histogramblocks::FloatParts parts{floatAtLeast(filling.lower()), floatAtLeast(filling.upper()),
                                      filling.below().values(), filling.above().values(),
                                      binned.data()};
    const auto* bits = reinterpret_cast<const std::uint8_t*>(good.words());
    for (std::size_t begin = 0; begin < good.size(); begin += BlockPixels) {
        parts.binnedCount = 0;
        histogramblocks::part(pixels + begin, bits + begin / 8,
                              std::min(BlockPixels, good.size() - begin), parts);
        for (std::size_t i = 0; i < parts.binnedCount; ++i)
            filling.addBinned(binned[i]);
    }
    filling.below().resize(parts.belowCount);
    filling.above().resize(parts.aboveCount);
}

}  // namespace

template <class L, class R>
void HistogramCompute::operator()(const MImage& image, const MImage& mask) const
{
    _count<L>(image, *GoodPixels::of(mask));
}

template <class L>
void HistogramCompute::_count(const MImage& image, const GoodPixels& good) const
{
    const L* pixels = image.pixels<L>();
    if constexpr (CountsValues<L>) {
        ValueCounts<L> counts(pixels, good);
        counts.upTo(good.size());
        return fill(counts);
    } else {
        Filling<L> filling(_mean, image.size());
        if constexpr (std::is_same_v<L, float>)
            fillFloats(filling, pixels, good);
        else
            good.forEach(0, good.size(), [&](std::size_t i) {
                if (pixels[i] == pixels[i])
                    filling.add(pixels[i]);
            });
        filling.finish(*_target);
    }
}

template <class T>
void HistogramCompute::fill(const ValueCounts<T>& counts) const
{
    Filling<T> filling(_mean, counts.size());
    counts.forEach([&](T value, unsigned int times) { filling.add(value, times); });
    filling.finish(*_target);
}

template void HistogramCompute::fill(const ValueCounts<unsigned char>&) const;
template void HistogramCompute::fill(const ValueCounts<unsigned short>&) const;
template void HistogramCompute::fill(const ValueCounts<short>&) const;
template void HistogramCompute::fill(const ValueCounts<unsigned int>&) const;
template void HistogramCompute::fill(const ValueCounts<int>&) const;

void HistogramCompute::compute(const MImage& image, const MImage& mask) const
{
    if (image.size() != mask.size())
        throw morvend::MBadParameterException("The mask has another size than its image");
    morvend::datatypes::BinaryDispatcher<const HistogramCompute&, const MImage, const MImage,
                                         void>::Go(image, mask, *this);
}
