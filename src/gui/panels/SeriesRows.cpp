// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/SeriesRows.h"

#include <algorithm>

namespace {

using Row = std::vector<double>;
using Rows = std::vector<Row>;

Row masked(int number) { return {double(number), 0, 1}; }

Row rowOf(const SeriesPoint& point, SeriesPoint::Quantity quantity)
{
    return point.good() ? Row{double(point.number), point.value(quantity), 0}
                        : masked(point.number);
}

/// The lowest and the highest of some rows in a row, and one that is masked, in their order.
void addExtremes(Rows& rows, Rows::const_iterator begin, Rows::const_iterator end)
{
    std::vector<Rows::const_iterator> kept;
    const auto isMasked = [](const Row& row) { return row[2] != 0; };
    if (const auto gap = std::find_if(begin, end, isMasked); gap != end)
        kept.push_back(gap);
    auto lowest = end;
    auto highest = end;
    for (auto row = begin; row != end; ++row) {
        if (isMasked(*row))
            continue;
        if (lowest == end || (*row)[1] < (*lowest)[1])
            lowest = row;
        if (highest == end || (*row)[1] > (*highest)[1])
            highest = row;
    }
    if (lowest != end)
        kept.push_back(lowest);
    if (highest != lowest)
        kept.push_back(highest);
    std::sort(kept.begin(), kept.end());
    for (const auto& row : kept)
        rows.push_back(*row);
}

}  // namespace

std::vector<std::vector<double>> seriesRows(const SeriesCurve& curve,
                                            SeriesPoint::Quantity quantity, std::size_t most)
{
    const auto& points = curve.points();
    const RegionSeries::News& state = curve.state();
    if (points.empty())
        return {};
    Rows rows;
    rows.reserve(points.size() + 2);
    if (points.front().number != state.first)
        rows.push_back(masked(state.first));
    std::size_t gap = 0;
    for (const SeriesPoint& point : points) {
        for (; state.gaps && gap < state.gaps->size(); ++gap) {
            const int missing = (*state.gaps)[gap].first;
            if (missing > point.number)
                break;
            rows.push_back(masked(missing));
        }
        rows.push_back(rowOf(point, quantity));
    }
    if (points.back().number != state.last)
        rows.push_back(masked(state.last));
    if (rows.size() <= most)
        return rows;
    Rows fewer;
    const std::size_t bins = std::max<std::size_t>(most / 3, 1);
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const auto at = [&](std::size_t i) {
            return rows.cbegin() + static_cast<std::ptrdiff_t>(rows.size() * i / bins);
        };
        addExtremes(fewer, at(bin), at(bin + 1));
    }
    // The axis goes over the whole series.
    if (fewer.front()[0] != rows.front()[0])
        fewer.insert(fewer.begin(), masked(int(rows.front()[0])));
    if (fewer.back()[0] != rows.back()[0])
        fewer.push_back(masked(int(rows.back()[0])));
    return fewer;
}
