// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/Marks.h"

#include "logic/support/GlobalStyle.h"

#include <QFont>
#include <QPainter>

#include <algorithm>

namespace render::marks {

QPen squarePen(const QColor& color, double width)
{
    return {color, width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

QFont font(int points) { return {GLOBALSTYLE::fontFamily, points}; }

void drawCross(QPainter& painter, QPoint centre, int arm, QSize view)
{
    // In double: the centre may be anywhere within the range of int.
    const QPointF c = centre;
    const QRectF room = QRectF(QPointF(), view).adjusted(-arm - 2, -arm - 2, arm + 2, arm + 2);
    if (!room.contains(c))
        return;
    // As areas of whole pixels of the screen: lines along their borders would fall on either side,
    // and the two bars of a cross be of different widths.
    const double ratio = painter.device()->devicePixelRatioF();
    const int width = std::max(qRound(painter.pen().widthF()), 1);
    const int deviceWidth = qRound(width * ratio);
    const int deviceArm = qRound(arm * ratio);
    const auto bar = [&](QPoint corner, QSize size) {
        painter.fillRect(QRectF(QPointF(corner) / ratio, QSizeF(size) / ratio),
                         painter.pen().color());
    };
    const QPoint corner(qRound((centre.x() - width / 2) * ratio),
                        qRound((centre.y() - width / 2) * ratio));
    const int length = 2 * deviceArm + deviceWidth;
    bar(corner - QPoint(deviceArm, 0), {length, deviceWidth});
    bar(corner - QPoint(0, deviceArm), {deviceWidth, length});
}

QRectF windowOf(QSize view)
{
    constexpr double room = 8;
    return QRectF(QPointF(), view).adjusted(-room, -room, room, room);
}

void drawOutline(QPainter& painter, const Outline& outline, const QRectF& window)
{
    const QPen pen = painter.pen();
    // A line of an odd width runs through the centres of pixels, whose corners positions name.
    const double half = qRound(pen.widthF()) % 2 == 1 ? 0.5 : 0;
    const QPointF toCentre(half, half);
    for (const Outline::Piece& piece : outline.within(window)) {
        if (pen.style() == Qt::CustomDashLine) {
            QPen dashed = pen;
            dashed.setDashOffset(piece.front().way / pen.widthF());
            painter.setPen(dashed);
        }
        QPolygonF line;
        for (const Outline::Point& point : piece)
            line << point.at + toCentre;
        painter.drawPolyline(line);
    }
    painter.setPen(pen);
}

}  // namespace render::marks
