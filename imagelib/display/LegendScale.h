// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Places of intensities along a colour bar, and the round ones among them that deserve a tick.
#pragma once

#include <map>
#include <optional>

namespace morvend::imglib {

/// A vertical scale from background (bottom row) to foreground or, with a logarithmic part, to
/// logarithmic foreground (top row). Each part takes half of the rows; logarithms are those of the
/// distance from the background, as in the transfer function.
class LegendScale {
public:
    LegendScale(double foreground, double background, double logForeground, bool logarithmic,
                int rows);

    /// Share of the rows, from the bottom, that belongs to the linear part.
    double linearShare() const { return _linearShare; }
    /// The row of an intensity, counted from the top; nothing outside the scale.
    std::optional<int> row(double intensity) const;
    /// Round intensities by row: multiples of 1, 2 or 5 in the linear part, decades and, where
    /// there is room, twice and five times them in the logarithmic one. Empty without a range.
    std::map<int, double> ticks() const;

private:
    using Ticks = std::map<int, double>;
    bool _valid() const;
    void _add(Ticks& ticks, double intensity) const;
    void _addLinear(Ticks& ticks) const;
    void _addLogarithmic(Ticks& ticks) const;

    double _foreground;
    double _background;
    double _logForeground;
    double _linearShare;
    int _rows;
};

}  // namespace morvend::imglib
