// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/HistogramModel.h"

namespace panels {

void HistogramModel::adopt(const ContrastData& contrast, double minimum, double maximum,
                           double unit, const CountUpTo& countUpTo)
{
    const Span span = plotSpan(minimum, maximum, contrast, unit);
    if (!_counted || !contrast.dragUpdate || span != _span)
        _bins = countBins(span, countUpTo);
    _counted = true;
    _contrast = contrast;
    _span = span;
    _summary = summaryText(span, contrast, countUpTo);
    setLogarithmic(_scale.logX, _scale.logY);
}

void HistogramModel::setLogarithmic(bool logX, bool logY)
{
    _scale = HistogramScale(_span, _bins, logX, logY);
}

}  // namespace panels
