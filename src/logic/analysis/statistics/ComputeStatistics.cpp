// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The statistics of an image under a mask, for all pixel types.
#include "logic/analysis/statistics/ComputeStatistics.h"

#include "imagelib/display/MContrast.h"
#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/statistics/GoodPixels.h"
#include "logic/analysis/statistics/PixelTotals.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QElapsedTimer>

#include <cmath>

namespace {

/// The header's saturation value where it applies, else 0.
int saturationValue(const morvend::imglib::MImage& image)
{
    using namespace morvend::datatypes;
    if (image.type() != INT && image.type() != UINT)
        return 0;
    return image.optionalData().saturation_value().get_value_or(0);
}

void setDefaultContrast(ImageStatistics& statistics, const morvend::imglib::MImage& image,
                        const morvend::imglib::MImage& mask)
{
    const morvend::imglib::MContrast contrast(6.0, 10000);
    contrast(statistics.foreground, statistics.background, image, &mask);
}

}  // namespace

template <class L, class R>
void ComputeStatistics::operator()(const MImage& image, const MImage& mask) const
{
    _numbers<L>(image, *GoodPixels::of(mask));
}

template <class L>
void ComputeStatistics::_numbers(const MImage& image, const GoodPixels& good) const
{
    const int saturation = saturationValue(image);
    const PixelTotals<L> totals = [&] {
        if constexpr (HasVectorTotals<L>)
            return vectorTotals(image.pixels<L>(), good, saturation);
        else
            return plainTotals(image.pixels<L>(), good, saturation);
    }();
    // Without a good pixel these are no numbers.
    const double mean = totals.sum / good.good();
    const double squares = totals.squares / good.good();
    _target->minimum = static_cast<double>(totals.minimum);
    _target->maximum = static_cast<double>(totals.maximum);
    _target->mean = mean;
    _target->sigma = std::sqrt(std::abs(squares - mean * mean));
    _target->zeros = totals.zeros;
    _target->defective = good.defective();
    _target->saturated = totals.saturated;
    _target->sum = totals.sum;
    _target->hasNegatives = -2.0 > _target->minimum;
}

void ComputeStatistics::computeNumbers(const MImage& image, const MImage& mask) const
{
    assert(!image.empty() && image.size() == mask.size());
    morvend::datatypes::BinaryDispatcher<const ComputeStatistics&, const MImage, const MImage,
                                         void>::Go(image, mask, *this);
}

void ComputeStatistics::compute(const MImage& image, const MImage& mask) const
{
    QElapsedTimer clock;
    clock.start();
    computeNumbers(image, mask);
    console::printTime("TIME FOR COMPUTING STATISTICS: ", clock.elapsed());
    clock.restart();
    _target->histogram.compute(image, mask, _target->mean);
    console::printTime("TIME FOR COMPUTING HISTOGRAM: ", clock.elapsed());
    clock.restart();
    setDefaultContrast(*_target, image, mask);
    console::printTime("TIME FOR COMPUTING CONTRAST: ", clock.elapsed());
}
