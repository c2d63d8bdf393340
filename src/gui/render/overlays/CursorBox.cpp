// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/CursorBox.h"

#include "gui/render/overlays/Marks.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QRect>

#include <algorithm>

namespace render {

namespace {

constexpr int boxWidth = 200;
constexpr int rowHeight = 16;
constexpr int fontSize = 12;
/// Distance from the anchor point of the box.
constexpr QPoint fillStart(12, 2);
constexpr int labelColumn = 16;
constexpr int valueColumn = 120;
/// Between a label and its value, and between a value and the edge of the box.
constexpr int gap = 5;

/// Draws a text, closer together if it would not fit into its column.
void drawFitted(QPainter& painter, QPoint start, const QString& text, int room)
{
    QFont font = marks::font(fontSize);
    const int width = QFontMetrics(font, painter.device()).horizontalAdvance(text);
    constexpr int closest = 60;
    if (width > room)
        font.setStretch(std::max(100 * room / width, closest));
    painter.setFont(font);
    painter.drawText(start, text);
}

/// The anchor point of the box.
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

    QPoint row = corner(cursor, view, extended);
    const auto write = [&](const QString& label, const QString& value) {
        row.ry() += rowHeight;
        drawFitted(painter, row + QPoint(labelColumn, 0), label, valueColumn - labelColumn - gap);
        drawFitted(painter, row + QPoint(valueColumn, 0), value, boxWidth - valueColumn - gap);
    };
    write(QStringLiteral("Image X Y"), QStringLiteral("%1 %2").arg(info.imgX(), info.imgY()));
    write(CursorInfo::intensityKey(), info.intensity());
    if (extended) {
        write(CursorInfo::distanceKey(), info.distance());
        write(CursorInfo::resolutionKey(), info.resolution());
    }
}

}  // namespace render
