// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Draws a histogram with the zones of its levels.
#pragma once

#include "gui/panels/HistogramModel.h"

#include <QColor>
#include <QFont>
#include <QRgb>

#include <optional>
#include <vector>

class QPainter;

namespace panels {

/// All that the histogram shows besides its model.
struct HistogramPicture {
    bool empty = true;          ///< no image: nothing but the frame
    std::vector<QRgb> colours;  ///< of the columns of the colour bar
    QColor foregroundZone;
    QColor backgroundZone;
    std::optional<HistogramReadout> readout;
    bool darkMark = false;  ///< marks the cursor on the colour bar in black, whatever the colour
};

/// Where the texts of an axis and the box between them begin, along the axis from its start.
struct AxisTexts {
    int name;
    int box;
    int log;
};

QFont axisFont();
/// The intensities' from x = 0 on, and the counts' from the bottom upwards.
AxisTexts intensityTexts();
AxisTexts countTexts();
/// Side of the boxes, and where the lines of text stand.
constexpr int AxisBox = 12;
constexpr int IntensityLine = 185;
constexpr int CountLine = 25;

/// In a widget's coordinates, on its dark ground.
void paint(QPainter& painter, const HistogramModel& model, const HistogramPicture& picture);

}  // namespace panels
