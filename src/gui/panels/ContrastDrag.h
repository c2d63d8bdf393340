// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The levels of a contrast under the mouse.
#pragma once

#include "gui/panels/HistogramScale.h"

namespace panels {

/// Foreground and background stay at least this far apart, in units.
constexpr double LevelDistance = 1e-6;

/// Closest levels on the other side of one.
/// @param unit  see intensityUnit()
double leastForeground(const ContrastData& contrast, double unit);
double largestBackground(const ContrastData& contrast, double unit);

/// A drag of one level or of both, in steps from where the mouse was pressed.
struct ContrastDrag {
    Zone zone = Zone::None;
    /// Pixels of the levels.
    int foreground = 0;
    int background = 0;

    /// Moves what was pressed by some pixels. A level stops at the end of the span and at the other
    /// level, and with it its pixel; both together keep their distance in pixels.
    void step(int dx, const HistogramScale& scale, const Span& span, ContrastData& contrast);
};

}  // namespace panels
