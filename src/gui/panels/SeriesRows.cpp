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

/// Of each bin of neighbours the extremes, between both ends of the curve.
Rows thinned(const Rows& rows, std::size_t most)
{
    constexpr std::size_t KeptOfABin = 3;
    Rows fewer{rows.front()};
    const std::size_t inner = rows.size() - 2;
    const std::size_t bins = std::max<std::size_t>((most - 2) / KeptOfABin, 1);
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const auto at = [&](std::size_t i) {
            return rows.cbegin() + 1 + static_cast<std::ptrdiff_t>(inner * i / bins);
        };
        addExtremes(fewer, at(bin), at(bin + 1));
    }
    fewer.push_back(rows.back());
    return fewer;
}

}  // namespace

std::vector<std::vector<double>> seriesRows(const std::vector<SeriesPoint>& points,
                                            const RegionSeries::News& state,
                                            SeriesPoint::Quantity quantity, std::size_t most)
{
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
    return rows.size() <= most ? rows : thinned(rows, most);
}
