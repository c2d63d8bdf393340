// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Small marks and pens that several overlays share.
#include "gui/render/overlays/Marks.h"

#include "logic/support/GlobalStyle.h"

#include <QFont>
#include <QLineF>
#include <QPainter>

#include <cmath>

namespace render::marks {

QPen squarePen(const QColor& color, double width)
{
    return {color, width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

QFont font(int points) { return {GLOBALSTYLE::fontFamily, points}; }

void drawCross(QPainter& painter, QPoint centre, int arm, QSize view)
{
    // In double: the centre may lie anywhere within the range of int.
    const QPointF c = centre;
    const QRectF room = QRectF(QPointF(), view).adjusted(-arm - 2, -arm - 2, arm + 2, arm + 2);
    if (!room.contains(c))
        return;
    painter.drawLine(c - QPointF(arm, 0), c + QPointF(arm, 0));
    painter.drawLine(c - QPointF(0, arm), c + QPointF(0, arm));
}

QRectF windowOf(QSize view)
{
    constexpr double room = 8;
    return QRectF(QPointF(), view).adjusted(-room, -room, room, room);
}

void drawOutline(QPainter& painter, const Outline& outline, const QRectF& window)
{
    const QPen pen = painter.pen();
    for (const Outline::Piece& piece : outline.within(window)) {
        if (pen.style() == Qt::CustomDashLine) {
            QPen dashed = pen;
            dashed.setDashOffset(piece.front().way / pen.widthF());
            painter.setPen(dashed);
        }
        QPolygonF line;
        for (const Outline::Point& point : piece)
            line << point.at;
        painter.drawPolyline(line);
    }
    painter.setPen(pen);
}

}  // namespace render::marks
