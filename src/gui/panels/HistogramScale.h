// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the bins of a histogram to the pixels of its plot.
#pragma once

#include "gui/panels/HistogramBins.h"

#include <QPoint>
#include <QString>

#include <optional>

namespace panels {

/// Places in the plot, in pixels of the widget.
namespace histogramplace {
constexpr int Left = 30;      ///< of the zones
constexpr int First = 40;     ///< pixel of the smallest intensity
constexpr int Columns = 260;  ///< to the largest one
constexpr int Last = First + Columns;
constexpr int Right = 310;  ///< of the zones
constexpr int Top = 50;
constexpr int Bottom = 150;
constexpr int BarTop = 155;  ///< of the colour bar
constexpr int BarBottom = 165;
constexpr int Tallest = 90;  ///< bin
constexpr int Height = 200;  ///< of the whole picture
}  // namespace histogramplace

/// The arithmetic of the plot: pixel = scaleX * value + offsetX + 40, where values and counts are
/// taken through asinh on a logarithmic axis, values in their unit.
struct HistogramScale {
    bool logX = true;
    bool logY = true;
    double scaleX = 1;
    double offsetX = 0;
    double scaleY = 1;
    double unit = 1;

    HistogramScale() = default;
    HistogramScale(const Span& span, const Bins& bins, bool logX, bool logY);

    /// Not left of the first pixel.
    int pixelOf(double value) const;
    /// 0 left of the first pixel.
    double valueAt(int pixel) const;
    /// The intensity that a column of the colour bar stands for.
    double columnValue(int column) const;
    /// Height of a bin in pixels.
    double heightOf(std::uint32_t count) const;
};

/// Where the mouse is: in the zone below the background, between the levels, above the foreground.
enum class Zone { Background = 0, Between = 1, Foreground = 2, None = 3 };

/// @param foreground,background  pixels of the levels
Zone zoneAt(const QPoint& point, int foreground, int background);

/// The bin at the cursor.
struct HistogramReadout {
    QPointF point;
    QString text;
};

/// Nothing outside the zones and left of the smallest intensity.
std::optional<HistogramReadout> readoutAt(const QPoint& point, Zone zone, const Bins& bins,
                                          const HistogramScale& scale);

}  // namespace panels
