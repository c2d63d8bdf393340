// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/plot/PlotScale.h"

#include "gui/plot/AxisTicks.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace plot {
namespace {

/// Ticks that an axis is to have; the logarithmic one chooses from many.
constexpr int Ticks = 4;
constexpr int LogarithmicTicks = 100;
/// What the largest y becomes before its asinh is taken.
constexpr double LogarithmicSpan = 200;

struct Range {
    double lowest = std::numeric_limits<double>::max();
    double highest = std::numeric_limits<double>::min();

    bool any() const { return lowest != std::numeric_limits<double>::max(); }
};

/// Of the rows that count.
Range rangeOf(const Rows& rows)
{
    Range range;
    bool first = true;
    for (const auto& row : rows) {
        if (masked(row))
            continue;
        range.lowest = std::min(range.lowest, row[1]);
        range.highest = first ? row[1] : std::max(range.highest, row[1]);
        first = false;
    }
    return range;
}

int rounded(double pixel) { return static_cast<int>(std::lround(std::clamp(pixel, -1e6, 1e6))); }

/// The y axis: pixel = factor * y + offset for the values as they are drawn.
class Heights {
public:
    Heights(const Range& range, const PlotFrame& frame)
        : _frame(frame)
        , _range(range)
    {
        if (frame.logarithmic) {
            const double most = std::max(std::abs(range.highest), std::abs(range.lowest));
            _stretch = most > 0 ? LogarithmicSpan / most : 1;
        }
        const double low = _drawn(range.lowest);
        const double high = _drawn(range.highest);
        if (high > low) {
            const double top = frame.top + frame.topPadding;
            _factor = (top + frame.bottomPadding - frame.top - frame.plotHeight()) / (high - low);
            _offset = top - _factor * high;
        } else {
            const int middle = frame.plotHeight() / 2;
            _offset = middle + frame.top;
        }
    }

    double pixelOf(double y) const { return _factor * _drawn(y) + _offset; }

    std::map<int, double> ticks() const
    {
        if (!_range.any())
            return {};
        if (_factor == 0)
            return {{rounded(_offset), _range.lowest}};
        std::map<int, double> ticks;
        for (const double tick : axisTicks(_range.lowest, _range.highest,
                                           _frame.logarithmic ? LogarithmicTicks : Ticks)) {
            const int pixel = rounded(pixelOf(tick));
            if (ticks.empty() || ticks.begin()->first - pixel >= _frame.plotHeight() / 6)
                ticks.emplace(pixel, tick);
        }
        return ticks;
    }

private:
    double _drawn(double y) const { return _frame.logarithmic ? std::asinh(_stretch * y) : y; }

    const PlotFrame& _frame;
    const Range _range;
    double _stretch = 1;
    double _factor = 0;
    double _offset = 0;
};

}  // namespace

bool masked(const std::vector<double>& row) { return row[2] != 0 || !std::isfinite(row[1]); }

PlotScale::PlotScale(const Rows& rows, const PlotFrame& frame)
{
    if (rows.empty())
        return;
    const double first = rows.front()[0];
    const double last = rows.back()[0];
    scaleX = last == first ? 0 : frame.plotWidth() / (last - first);
    offsetX = frame.left - scaleX * first;
    for (const double tick : axisTicks(first, last, Ticks))
        if (!frame.wholeX || tick == std::round(tick))
            xTicks[rounded(pixelOf(tick))] = tick;

    const Heights heights(rangeOf(rows), frame);
    yTicks = heights.ticks();
    graph.reserve(rows.size());
    for (const auto& row : rows)
        graph.emplace_back(pixelOf(row[0]),
                           masked(row) ? frame.top + frame.plotHeight() : heights.pixelOf(row[1]));
}

}  // namespace plot
