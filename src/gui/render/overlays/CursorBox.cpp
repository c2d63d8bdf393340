// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The values under the cursor, beside it.
#include "gui/render/overlays/CursorBox.h"

#include "gui/render/overlays/Marks.h"

#include <QPainter>
#include <QRect>

namespace render {

namespace {

constexpr int boxWidth = 200;
constexpr int rowHeight = 16;
constexpr int fontSize = 12;
/// From the point that the box hangs on.
constexpr QPoint fillStart(12, 2);
constexpr int labelColumn = 16;
constexpr int valueColumn = 120;

/// The point that the box hangs on.
QPoint corner(QPoint cursor, QSize view, bool extended)
{
    const int height = rowHeight * (extended ? 4 : 2);
    QPoint at = cursor;
    if (view.width() - cursor.x() < boxWidth)
        at.rx() -= boxWidth;
    if (view.height() - cursor.y() < height)
        at.ry() -= height;
    return at;
}

}  // namespace

bool cursorBoxExtended(const CursorInfo& info)
{
    return !info.distance().isEmpty() && !info.resolution().isEmpty();
}

QRect cursorBoxArea(QPoint cursor, QSize view, bool extended)
{
    const QPoint at = corner(cursor, view, extended);
    const int rows = extended ? 4 : 2;
    return {at + fillStart, at + QPoint(boxWidth - 1, rows * rowHeight + 3)};
}

void drawCursorBox(QPainter& painter, QPoint cursor, QSize view, const CursorInfo& info)
{
    const bool extended = cursorBoxExtended(info);
    painter.fillRect(cursorBoxArea(cursor, view, extended), QColor(0, 0, 0, 150));
    painter.setPen(QPen(Qt::white));
    painter.setFont(marks::font(fontSize));

    QPoint row = corner(cursor, view, extended);
    const auto write = [&](const QString& label, const QString& value) {
        row.ry() += rowHeight;
        painter.drawText(row + QPoint(labelColumn, 0), label);
        painter.drawText(row + QPoint(valueColumn, 0), value);
    };
    write(QStringLiteral("Image X Y"), QStringLiteral("%1 %2").arg(info.imgX(), info.imgY()));
    write(CursorInfo::intensityKey(), info.intensity());
    if (extended) {
        write(CursorInfo::distanceKey(), info.distance());
        write(CursorInfo::resolutionKey(), info.resolution());
    }
}

}  // namespace render
