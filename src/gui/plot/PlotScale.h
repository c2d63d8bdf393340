// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the rows of a curve to the pixels of a plot.
#pragma once

#include <QPointF>
#include <QSize>

#include <map>
#include <vector>

namespace plot {

/// Rows of x, y and mask, in ascending order of x. A row is masked if its mask is not 0 or its y is
/// not finite: it counts for the range of x but not of y, and is drawn on the bottom line.
using Rows = std::vector<std::vector<double>>;

bool masked(const std::vector<double>& row);

/// What a plot's pixels depend on besides its rows, in pixels.
struct PlotFrame {
    QSize size;
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int topPadding = 0;     ///< free above the highest point
    int bottomPadding = 0;  ///< free below the lowest point
    bool logarithmic = false;
    /// The x are whole numbers, such as of images: ticks and texts are whole too, masked rows are
    /// gaps in the curve instead of points on the bottom line, and there is nothing between rows.
    bool wholeX = false;

    int plotWidth() const { return size.width() - left - right; }
    int plotHeight() const { return size.height() - top - bottom; }
};

/// The arithmetic of a plot: pixel = scaleX * x + offsetX. Empty without rows.
struct PlotScale {
    double scaleX = 0;
    double offsetX = 0;
    std::vector<QPointF> graph;    ///< a point for each row
    std::map<int, double> xTicks;  ///< pixel to value
    std::map<int, double> yTicks;

    PlotScale() = default;
    PlotScale(const Rows& rows, const PlotFrame& frame);

    double pixelOf(double x) const { return scaleX * x + offsetX; }
    double valueAt(double pixel) const { return scaleX == 0 ? 0 : (pixel - offsetX) / scaleX; }
};

}  // namespace plot
