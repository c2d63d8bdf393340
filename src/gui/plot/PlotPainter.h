// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Draws a plot on any painter.
#pragma once

#include "gui/plot/PlotReadout.h"
#include "gui/plot/PlotScale.h"

#include <QString>

#include <optional>
#include <utility>
#include <vector>

class QPainter;

namespace plot {

/// A measure along x, in values.
struct LeftRightArrow {
    double left = 0;
    double right = 0;
    QString text;
    bool level = true;  ///< the text stands at the lower of its two heights
};

/// All that a plot shows.
struct Picture {
    PlotFrame frame;
    Rows rows;  ///< those on show
    PlotScale scale;
    QString xLabel;
    QString yLabel;
    std::vector<LeftRightArrow> arrows;
    std::optional<double> marker;  ///< an x with a line over the whole height
    std::optional<Readout> readout;
    std::optional<std::pair<double, double>> dragged;  ///< pixels of a range under the mouse
};

/// Draws light lines; the caller has filled a dark background.
void paint(QPainter& painter, const Picture& picture);

}  // namespace plot
