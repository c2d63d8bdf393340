// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/HistogramScale.h"

#include <algorithm>
#include <cmath>

namespace panels {

using namespace histogramplace;

HistogramScale::HistogramScale(const Span& span, const Bins& bins, bool logX_, bool logY_)
    : logX(logX_)
    , logY(logY_)
    , unit(span.unit)
{
    const double first = logX ? std::asinh(span.minimum / unit) : span.minimum;
    const double last = logX ? std::asinh(span.maximum / unit) : span.maximum;
    scaleX = Columns / (last - first);
    offsetX = -first * scaleX;
    const double largest = std::max(1.0, double(*std::ranges::max_element(bins.counts(logX))));
    scaleY = Tallest / (logY ? std::asinh(largest) : largest);
}

int HistogramScale::pixelOf(double value) const
{
    const double pixel = scaleX * (logX ? std::asinh(value / unit) : value) + offsetX + First;
    // A level may lie far beyond a span that is computed anew only with the next record.
    return int(std::floor(std::clamp(pixel, double(First), 1e6) + 0.5));
}

double HistogramScale::valueAt(int pixel) const
{
    return pixel < First ? 0 : columnValue(pixel - First);
}

double HistogramScale::columnValue(int column) const
{
    const double value = (column - offsetX) / scaleX;
    return logX ? unit * std::sinh(value) : value;
}

double HistogramScale::heightOf(std::uint32_t count) const
{
    return scaleY * (logY ? std::asinh(double(count)) : count);
}

Zone zoneAt(const QPoint& point, int foreground, int background)
{
    if (point.y() < Top || point.y() > Bottom || point.x() < Left || point.x() > Right)
        return Zone::None;
    if (point.x() <= std::max(background, Left))
        return Zone::Background;
    return point.x() < std::min(foreground + 2, Right) ? Zone::Between : Zone::Foreground;
}

std::optional<HistogramReadout> readoutAt(const QPoint& point, Zone zone, const Bins& bins,
                                          const HistogramScale& scale)
{
    if (zone == Zone::None || point.x() < First)
        return {};
    const double value = scale.valueAt(point.x());
    const Bins::Edges& edges = bins.edges(scale.logX);
    const auto upper = std::upper_bound(edges.begin() + 1, edges.end(), value);
    if (upper == edges.end())
        return {};
    const auto bin = std::size_t(upper - edges.begin() - 1);
    const std::uint32_t count = bins.counts(scale.logX)[bin];
    return HistogramReadout{QPointF(point.x(), Bottom - scale.heightOf(count)),
                            QStringLiteral("(%1,%2)").arg(value, 0, 'g', 3).arg(count)};
}

}  // namespace panels
