// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The statistics of an image under a mask, for all pixel types.
#include "logic/analysis/statistics/ComputeStatistics.h"

#include "imagelib/display/MContrast.h"
#include "imagelib/image/BinaryDispatcher.h"
#include "imagelib/image/PixelTypes.h"
#include "logic/analysis/statistics/FloatTotals.h"
#include "logic/analysis/statistics/ValueCounts.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QElapsedTimer>

#include <algorithm>
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
    if constexpr (CountsValues<L>) {
        ValueCounts<L> counts(image.pixels<L>(), good);
        counts.upTo(good.size());
        _set(counts.totals(saturationValue(image)), good);
    } else if constexpr (std::is_same_v<L, float>) {
        _set(vectorTotals(image.pixels<L>(), good), good);
    } else {
        _set(plainTotals(image.pixels<L>(), good, saturationValue(image)), good);
    }
}

template <class L>
void ComputeStatistics::_numbersAndHistogram(const MImage& image, const MImage& mask,
                                             const Progress& progress, bool printed) const
{
    // A quarter of a MiB or less of the usual pixels: they stay in the second-level cache.
    constexpr std::size_t Strip = 1 << 16;
    QElapsedTimer clock;
    clock.start();
    const auto good = GoodPixels::of(mask);
    const auto endStep = [&](const char* label) {
        if (printed)
            console::printTime(label, clock.elapsed());
        clock.restart();
    };
    if constexpr (CountsValues<L>) {
        ValueCounts<L> counts(image.pixels<L>(), *good);
        for (std::size_t end = 0; end < good->size();) {
            end = std::min(end + Strip, good->size());
            counts.upTo(end);
            progress(end);
        }
        _set(counts.totals(saturationValue(image)), *good);
        endStep("TIME FOR COMPUTING STATISTICS: ");
        _target->histogram.compute(counts, _target->mean);
    } else {
        _numbers<L>(image, *good);
        progress(good->size());
        endStep("TIME FOR COMPUTING STATISTICS: ");
        _target->histogram.compute(image, mask, _target->mean);
    }
    endStep("TIME FOR COMPUTING HISTOGRAM: ");
}

template <class L>
void ComputeStatistics::_set(const PixelTotals<L>& totals, const GoodPixels& good) const
{
    // Without a good pixel these are NaN.
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

void ComputeStatistics::compute(const MImage& image, const MImage& mask,
                                const Progress& progress) const
{
    _all(
        image, mask, progress ? progress : [](std::size_t) {}, true);
}

void ComputeStatistics::computeAgain(const MImage& image, const MImage& mask) const
{
    _all(
        image, mask, [](std::size_t) {}, false);
}

void ComputeStatistics::_all(const MImage& image, const MImage& mask, const Progress& progress,
                             bool printed) const
{
    assert(!image.empty() && image.size() == mask.size());
    morvend::datatypes::dispatchPixelType(image.type(), image.typeBits(), [&]<class L>() {
        _numbersAndHistogram<L>(image, mask, progress, printed);
    });
    QElapsedTimer clock;
    clock.start();
    setDefaultContrast(*_target, image, mask);
    if (printed)
        console::printTime("TIME FOR COMPUTING CONTRAST: ", clock.elapsed());
}
