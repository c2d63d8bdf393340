// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/plot/PlotReadout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace plot {
namespace {

/// Points this near to each other stand above each other, in pixels.
constexpr double Same = 1e-7;

using Graph = std::vector<QPointF>;

/// Rows on both sides of the cursor, or twice the same.
struct Neighbours {
    std::size_t begin;
    std::size_t end;
};

Neighbours around(const Graph& graph, double x)
{
    Neighbours found{0, graph.size() - 1};
    while (found.end - found.begin > 1) {
        const std::size_t middle = (found.begin + found.end) / 2;
        if (x >= graph[middle].x())
            found.begin = middle;
        if (x <= graph[middle].x())
            found.end = middle;
    }
    return found;
}

/// The highest of all points above the cursor, given one of them.
std::size_t highestAt(const Graph& graph, double x, std::size_t index)
{
    const auto above = [&](std::size_t i) { return std::abs(graph[i].x() - x) <= Same; };
    std::size_t first = index;
    while (first > 0 && above(first - 1))
        --first;
    std::size_t highest = first;
    for (std::size_t i = first; i < graph.size() && above(i); ++i)
        highest = graph[i].y() < graph[highest].y() ? i : highest;
    return highest;
}

Neighbours closest(const Graph& graph, double x)
{
    const Neighbours found = around(graph, x);
    for (const std::size_t index : {found.begin, found.end}) {
        if (std::abs(graph[index].x() - x) <= Same) {
            const std::size_t highest = highestAt(graph, x, index);
            return {highest, highest};
        }
    }
    return found;
}

Readout ofRow(const Rows& rows, const Graph& graph, std::size_t row, double x)
{
    return {{x, graph[row].y()}, rows[row][0], rows[row][1]};
}

Readout between(const Rows& rows, const Graph& graph, const Neighbours& rowsAround, double x)
{
    const auto [begin, end] = rowsAround;
    const double part = (x - graph[begin].x()) / (graph[end].x() - graph[begin].x());
    const auto linear = [part](double from, double to) { return from + (to - from) * part; };
    return {{x, linear(graph[begin].y(), graph[end].y())},
            linear(rows[begin][0], rows[end][0]),
            linear(rows[begin][1], rows[end][1])};
}

}  // namespace

std::optional<Readout> readoutAt(const Rows& rows, const PlotScale& scale, double x)
{
    const Graph& graph = scale.graph;
    if (graph.empty() || x < graph.front().x() || x > graph.back().x())
        return {};
    const Neighbours found = closest(graph, x);
    const double column = std::floor(x);
    if (std::floor(graph[found.end].x()) != column)
        return found.begin == found.end ? ofRow(rows, graph, found.end, x)
                                        : between(rows, graph, found, x);
    std::size_t highest = found.end;
    for (std::size_t i = found.end; i < graph.size() && std::floor(graph[i].x()) == column; ++i)
        highest = rows[i][1] > rows[highest][1] ? i : highest;
    return ofRow(rows, graph, highest, x);
}

std::optional<Readout> nearestRow(const Rows& rows, const PlotScale& scale, double x)
{
    const Graph& graph = scale.graph;
    const auto before = [](const QPointF& point, double pixel) { return point.x() < pixel; };
    const auto right = static_cast<std::size_t>(
        std::lower_bound(graph.begin(), graph.end(), x, before) - graph.begin());
    std::optional<std::size_t> nearest;
    for (std::size_t i = right; i < graph.size() && !nearest; ++i)
        if (!masked(rows[i]))
            nearest = i;
    for (std::size_t i = right; i > 0; --i) {
        if (masked(rows[i - 1]))
            continue;
        if (!nearest || x - graph[i - 1].x() < graph[*nearest].x() - x)
            nearest = i - 1;
        break;
    }
    if (!nearest)
        return {};
    return Readout{graph[*nearest], rows[*nearest][0], rows[*nearest][1]};
}

}  // namespace plot
