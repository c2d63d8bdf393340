// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The values of a curve at the cursor.
#pragma once

#include "gui/plot/PlotScale.h"

#include <optional>

namespace plot {

/// A point of the curve near the cursor.
struct Readout {
    QPointF point;  ///< in pixels; its x is the cursor's
    double x = 0;
    double y = 0;
};

/// The point at a cursor's x, in pixels: the highest of those in the same column of pixels, or one
/// between its neighbours. Nothing outside the curve.
std::optional<Readout> readoutAt(const Rows& rows, const PlotScale& scale, double x);

/// The unmasked row that is nearest to a pixel of the x axis, at its own place; nothing if all are
/// masked.
std::optional<Readout> nearestRow(const Rows& rows, const PlotScale& scale, double x);

}  // namespace plot
