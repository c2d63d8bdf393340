// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The statistics pass, written once over all pixel types.
#include "logic/analysis/statistics/ComputeStatistics.h"

#include "imagelib/display/MContrast.h"
#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/statistics/MaskRule.h"
#include "logic/support/Assert.h"
#include "logic/support/Console.h"

#include <QElapsedTimer>

#include <cmath>
#include <utility>

namespace {

/// The header's saturation value where it applies, else 0.
int saturationValue(const morvend::imglib::MImage& image)
{
    using namespace morvend::datatypes;
    if (image.type() != INT && image.type() != UINT)
        return 0;
    return image.optionalData().saturation_value().get_value_or(0);
}

template <class T>
bool saturates(T value, int saturation)
{
    if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char>)
        return saturation >= 1 && std::cmp_greater_equal(value, saturation);
    else
        return false;
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
    const L* pixels = image.pixels<L>();
    const R* marks = mask.pixels<R>();
    const int saturation = saturationValue(image);
    // The first pixel counts here whatever its mask says.
    L minimum = pixels[0];
    L maximum = pixels[0];
    unsigned int zeros = 0;
    unsigned int defective = 0;
    unsigned int saturated = 0;
    unsigned int good = 0;
    double sum = 0;
    double squares = 0;
    for (std::size_t i = 0; i < image.size(); ++i) {
        if (!maskrule::good(marks[i])) {
            defective += maskrule::defective(marks[i]);
            continue;
        }
        const L value = pixels[i];
        if (!(value > L(0)) && !(value < L(0)))
            ++zeros;
        else if (saturates(value, saturation))
            ++saturated;
        const double number = static_cast<double>(value);
        sum += number;
        squares += number * number;
        ++good;
        if (value > maximum)
            maximum = value;
        else if (!(value >= minimum))  // NaN becomes the minimum
            minimum = value;
    }
    const double mean = sum / good;
    _target->minimum = static_cast<double>(minimum);
    _target->maximum = static_cast<double>(maximum);
    _target->mean = mean;
    _target->sigma = std::sqrt(std::abs(squares / good - mean * mean));
    _target->zeros = zeros;
    _target->defective = defective;
    _target->saturated = saturated;
    _target->sum = sum;
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
