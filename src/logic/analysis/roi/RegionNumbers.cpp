// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/analysis/roi/RegionNumbers.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/PixelTypes.h"
#include "logic/analysis/roi/RegionStencil.h"
#include "logic/analysis/roi/RegionSums.h"
#include "logic/analysis/roi/RoiComputer.h"
#include "logic/analysis/statistics/GoodPixels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/roi/RegionNumbers.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace roi::HWY_NAMESPACE {

using morvend::imglib::MImage;

/// Integers of up to 32 bits are summed as integers, exactly: as many as an image has do not
/// overflow. So are their squares, up to 64 of them.
template <class T>
constexpr bool Exact = std::is_integral_v<T> && sizeof(T) <= 4;
template <class T>
using Sum = std::conditional_t<Exact<T>, long long, double>;

template <class T>
class AreaReader {
public:
    AreaReader(const MImage& image, const GoodPixels& good)
        : _pixels(image.pixels<T>())
        , _good(good)
    {}

    /// Without the deviation, which takes most of the time.
    RegionSums sumsOf(const StencilArea& area) const { return _sumsOf<false>(area); }
    RegionSums sumsWithDeviationOf(const StencilArea& area) const { return _sumsOf<true>(area); }

private:
    template <bool Squares>
    RegionSums _sumsOf(const StencilArea& area) const
    {
        Whole whole;
        for (const StencilArea::Run& run : area.runs)
            _add<Squares>(run, whole);
        RegionSums sums;
        sums.sum = static_cast<double>(whole.sum);
        sums.squares = whole.squares;
        sums.weight = static_cast<double>(whole.count);
        sums.extremes.add(whole.extremes);
        for (const StencilArea::Part& part : area.parts)
            if (_good[part.pixel])
                sums.add(static_cast<double>(_pixels[part.pixel]), part.weight);
        return sums;
    }

    struct Whole {
        Sum<T> sum = 0;
        double squares = 0;
        std::size_t count = 0;
        ExtremesOf<T> extremes;
    };

    template <bool Squares>
    void _add(const StencilArea::Run& run, Whole& whole) const
    {
        constexpr std::size_t Bits = GoodPixels::WordBits;
        T kept[Bits];
        for (std::size_t pixel = run.begin, count = 0; pixel < run.end; pixel += count) {
            count = std::min(Bits - pixel % Bits, run.end - pixel);
            const std::uint64_t all = ~std::uint64_t(0) >> (Bits - count);
            std::uint64_t good = (_good.words()[pixel / Bits] >> (pixel % Bits)) & all;
            const T* values = _pixels + pixel;
            std::size_t number = count;
            if (good != all) {
                for (number = 0; good != 0; good &= good - 1)
                    kept[number++] = values[std::countr_zero(good)];
                values = kept;
            }
            _addValues<Squares>(values, number, whole);
        }
    }
    /// One loop for each kind of sum, so that the compiler makes vectors of them.
    template <bool Squares>
    static void _addValues(const T* values, std::size_t count, Whole& whole)
    {
        Sum<T> sum = 0;
        for (std::size_t i = 0; i < count; ++i)
            sum += static_cast<Sum<T>>(values[i]);
        double squares = 0;
        for (std::size_t i = 0; Squares && i < count; ++i)
            squares += static_cast<double>(values[i]) * static_cast<double>(values[i]);
        whole.sum += sum;
        whole.squares += squares;
        whole.count += count;
        whole.extremes.add(values, count);
    }

    const T* _pixels;
    const GoodPixels& _good;
};

RegionSums sumArea(const MImage& image, const GoodPixels& good, const StencilArea& area,
                   bool deviation)
{
    return morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class T>() {
        const AreaReader<T> reader(image, good);
        return deviation ? reader.sumsWithDeviationOf(area) : reader.sumsOf(area);
    });
}

}  // namespace roi::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

using morvend::imglib::MImage;
using namespace roi;

namespace roi {
HWY_EXPORT(sumArea);
}

namespace {

RegionSums sumArea(const MImage& image, const GoodPixels& good, const StencilArea& area,
                   bool deviation)
{
    return HWY_DYNAMIC_DISPATCH(roi::sumArea)(image, good, area, deviation);
}

/// The part of it that RoiComputer has in common with this.
void store(RoiStatistics& result, const RegionSums& area, const RegionSums& background)
{
    area.store(result);
    result.sigma = 0;
    background.WeightedSums::store(result.backgroundMean, result.backgroundSigma);
    if (area.weight == 0)
        return;
    result.intensity = area.sum - result.backgroundMean * area.weight;
    result.intensitySigma =
        std::sqrt(result.backgroundSigma * result.backgroundSigma * area.weight + area.sum);
}

bool hasStencil(const StatisticsData& region)
{
    return region.defined &&
           (region.roiType == StatisticsData::Line || region.roiType == StatisticsData::Circle ||
            (region.roiType == StatisticsData::CentredCircle && region.centredCircleDefined()));
}

}  // namespace

RegionNumbers::RegionNumbers(const StatisticsData& region)
    : _region(region)
{}

RegionNumbers::~RegionNumbers() = default;

RoiStatistics RegionNumbers::compute(const MImage& image, const MImage& mask)
{
    RoiComputer computer;
    computer.setImage(image);
    computer.setMask(mask);
    computer.setStatisticsData(_region);
    if (!hasStencil(_region))
        return computer.compute();
    computer.check();
    const auto stencil = _stencilFor(image);
    const auto good = GoodPixels::of(mask);
    RoiStatistics result;
    store(result, sumArea(image, *good, stencil->area(), false),
          sumArea(image, *good, stencil->background(), true));
    if (_region.roiType != StatisticsData::Circle)
        result.intensity = result.intensitySigma = 0;
    return result;
}

std::shared_ptr<const RegionStencil> RegionNumbers::_stencilFor(const MImage& image)
{
    const std::lock_guard lock(_mutex);
    if (!_stencil || !_stencil->fits(image))
        _stencil = std::make_shared<const RegionStencil>(_region, image.width(), image.height());
    return _stencil;
}

#endif
