// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ThumbnailFrame.h"

#include <QLineF>
#include <QPainter>

#include <cmath>

namespace render {

QRectF thumbnailFrame(const QRectF& visible, double scale)
{
    return {visible.topLeft() * scale, visible.bottomRight() * scale};
}

bool frameNeedsCross(const QRectF& frame)
{
    constexpr double smallest = 5;
    return frame.width() < smallest || frame.height() < smallest;
}

void drawThumbnailFrame(QPainter& painter, const QRectF& frame)
{
    painter.fillRect(frame, QColor(0, 0, 0, 150));
    if (!frameNeedsCross(frame))
        return;
    constexpr double arm = 6;
    const QPointF centre(std::floor(frame.center().x()) + 0.5,
                         std::floor(frame.center().y()) + 0.5);
    for (const QPen& pen : {QPen(Qt::white, 3), QPen(Qt::black, 1)}) {
        painter.setPen(pen);
        painter.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
        painter.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
    }
}

}  // namespace render
