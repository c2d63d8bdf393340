// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/ContrastDrag.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace panels {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

/// A level and its pixel, within bounds.
void place(double& level, int& pixel, double least, double largest, const HistogramScale& scale)
{
    const double wanted = scale.valueAt(pixel);
    level = std::max(std::min(wanted, largest), least);
    if (level != wanted)
        pixel = scale.pixelOf(level);
}

/// The first pixel of the scale is the left end; what lies beyond it has no value.
void stayOnScale(int& pixel, const HistogramScale& scale, const Span& span)
{
    pixel = std::max(pixel, scale.pixelOf(span.minimum));
}

}  // namespace

double leastForeground(const ContrastData& contrast, double unit)
{
    return std::max(contrast.background + LevelDistance * unit,
                    std::nextafter(contrast.background, Infinity));
}

double largestBackground(const ContrastData& contrast, double unit)
{
    return std::min(contrast.foreground - LevelDistance * unit,
                    std::nextafter(contrast.foreground, -Infinity));
}

void ContrastDrag::step(int dx, const HistogramScale& scale, const Span& span,
                        ContrastData& contrast)
{
    if (zone == Zone::Between) {
        dx = std::min(dx, scale.pixelOf(span.maximum) - foreground);
        dx = std::max(dx, scale.pixelOf(span.minimum) - background);
        foreground += dx;
        background += dx;
        place(contrast.background, background, span.minimum, span.maximum, scale);
        place(contrast.foreground, foreground, leastForeground(contrast, span.unit), span.maximum,
              scale);
    } else if (zone == Zone::Foreground) {
        foreground += dx;
        stayOnScale(foreground, scale, span);
        place(contrast.foreground, foreground, leastForeground(contrast, span.unit), span.maximum,
              scale);
    } else if (zone == Zone::Background) {
        background += dx;
        stayOnScale(background, scale, span);
        place(contrast.background, background, span.minimum, largestBackground(contrast, span.unit),
              scale);
    }
}

}  // namespace panels
