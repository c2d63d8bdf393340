// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/Peaks.h"

#include "gui/render/overlays/Marks.h"

#include <QPainter>

#include <algorithm>

namespace render {

void drawPeaks(QPainter& painter, const ViewGeometry& geometry, const PeakData& selection,
               const ImagePeaks& peaks)
{
    constexpr int arm = 5;
    constexpr int highlightedArm = 10;
    const int count = std::min(selection.numberOfPeaks, peaks.numberOfPeaks());
    const auto mark = [&](int index, int length) {
        const ImagePeaks::Pixel peak = peaks[index];
        marks::drawCross(painter, geometry.screenPoint(peak.x + 0.5, peak.y + 0.5), length,
                         geometry.view());
    };
    painter.setPen(QPen(Qt::blue));
    for (int i = 0; i < count; ++i)
        mark(i, arm);
    painter.setPen(marks::squarePen(Qt::green, 2));
    for (const int index : selection.highlightedPeaks) {
        if (index >= 0 && index < count)
            mark(index, highlightedArm);
    }
}

}  // namespace render
