// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/HistogramBins.h"

#include <algorithm>
#include <cmath>

namespace panels {
namespace {

/// Room beyond the extremes of an image, in units.
constexpr double Margin = 10;
/// Finite in all arithmetic of the plot.
constexpr double Largest = 1e300;

double finite(double value, double fallback)
{
    return std::isnan(value) ? fallback : std::clamp(value, -Largest, Largest);
}

/// At least one number further, even where numbers are far apart.
double beyond(double value, double step)
{
    return step < 0 ? std::min(value + step, std::nextafter(value, -Largest))
                    : std::max(value + step, std::nextafter(value, Largest));
}

}  // namespace

double intensityUnit(double minimum, double maximum, bool floatingPixels)
{
    constexpr double FewCounts = 10;
    constexpr double Least = 1e-300;
    const double largest = std::max(std::abs(minimum), std::abs(maximum));
    if (!floatingPixels || !(largest > 0 && largest < FewCounts))
        return 1;
    return std::max(std::pow(10, std::floor(std::log10(largest)) - 2), Least);
}

Span plotSpan(double minimum, double maximum, const ContrastData& contrast, double unit)
{
    const double margin = Margin * unit;
    Span span;
    span.unit = unit;
    span.maximum = beyond(finite(maximum, 0), margin);
    span.maximum = std::max(span.maximum, finite(contrast.foreground, span.maximum));
    span.minimum = std::min(0.0, beyond(finite(minimum, 0), -margin));
    span.minimum = std::min(span.minimum, finite(contrast.background, span.minimum));
    span.minimum = std::min(span.minimum, beyond(span.maximum, -margin));
    return span;
}

Bins countBins(const Span& span, const CountUpTo& countUpTo)
{
    constexpr double Step = 1.0 / BinCount;
    const double unit = span.unit;
    const auto upTo = [&](double units) { return countUpTo(units * unit); };
    Bins bins;
    const double logStep =
        Step * (std::asinh(span.maximum / unit) - std::asinh(span.minimum / unit));
    const double linearStep = Step * (span.maximum - span.minimum);
    bins.linearEdges[0] = bins.logEdges[0] = span.minimum;
    for (std::size_t i = 0; i < BinCount; ++i) {
        bins.logEdges[i + 1] = unit * std::sinh(std::asinh(bins.logEdges[i] / unit) + logStep);
        bins.linearEdges[i + 1] = bins.linearEdges[i] + linearStep;
        bins.logCounts[i] = upTo(std::ceil(bins.logEdges[i + 1] / unit)) -
                            upTo(std::floor(bins.logEdges[i] / unit));
        bins.linearCounts[i] = upTo(std::ceil(bins.linearEdges[i + 1] / unit)) -
                               upTo(std::floor(bins.linearEdges[i] / unit - 1));
    }
    return bins;
}

QString summaryText(const Span& span, const ContrastData& contrast, const CountUpTo& countUpTo)
{
    const qint64 below = countUpTo(contrast.background);
    const qint64 toForeground = countUpTo(contrast.foreground - span.unit);
    const qint64 all = countUpTo(span.maximum);
    // Levels less than a unit apart have nothing between them.
    return QStringLiteral("<table>"
                          "<tr><td># Pixels \u2264 BG:  %1</td></tr><tr><td>"
                          "BG &lt; # Pixels &lt; FG:  %2</td></tr><tr><td>"
                          "# Pixels \u2265 FG:  %3</td></tr>"
                          "</table>")
        .arg(below)
        .arg(std::max<qint64>(toForeground - below, 0))
        .arg(all - toForeground);
}

double spinStep(const Span& span, bool floatingPixels)
{
    const double part = std::abs(span.maximum - span.minimum) * 0.001;
    if (!floatingPixels || part == 1 || !(part > 0))
        return 1;
    // The logarithm only comes near a power of ten.
    double step = std::pow(10, std::round(std::log10(part)));
    if (part > 1)
        return step < part ? step : step / 10;
    return step > part ? step : step * 10;
}

}  // namespace panels
