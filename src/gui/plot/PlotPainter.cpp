// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/plot/PlotPainter.h"

#include "logic/support/GlobalStyle.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <array>

namespace plot {
namespace {

const QColor ReadoutColour(150, 200, 255);

QFont fontOf(int points) { return {GLOBALSTYLE::fontFamily, points}; }

QString shortText(double value, int digits) { return QString::number(value, 'g', digits); }

/// A whole number is written with all its digits.
QString xText(const Picture& picture, double x, int digits)
{
    return picture.frame.wholeX ? QString::number(x, 'f', 0) : shortText(x, digits);
}

void paintXTicks(QPainter& painter, const Picture& picture)
{
    const PlotFrame& frame = picture.frame;
    const int bottom = frame.top + frame.plotHeight();
    const QFontMetrics metrics(painter.font());
    for (const auto& [pixel, value] : picture.scale.xTicks) {
        painter.drawLine(pixel, bottom, pixel, bottom - 5);
        const QString text = xText(picture, value, 4);
        painter.drawText(pixel - metrics.horizontalAdvance(text) / 2,
                         frame.size.height() - frame.bottom + 16, text);
    }
}

void paintYTicks(QPainter& painter, const Picture& picture)
{
    constexpr int Largest = 12;
    constexpr int Smallest = 5;
    const PlotFrame& frame = picture.frame;
    const int room = frame.left - 3;
    for (const auto& [pixel, value] : picture.scale.yTicks) {
        painter.drawLine(frame.left, pixel, frame.left + 5, pixel);
        QString text = shortText(value, 4);
        for (int points = Largest; points >= Smallest; --points) {
            painter.setFont(fontOf(points));
            const QFontMetrics metrics(painter.font());
            const QString exact = shortText(value, 5);
            const int width = metrics.horizontalAdvance(exact);
            const QString brief = shortText(value, 4);
            text = width > metrics.horizontalAdvance(brief) && width > room ? brief : exact;
            if (width <= room)
                break;
        }
        const QFontMetrics metrics(painter.font());
        painter.drawText(room - metrics.horizontalAdvance(text),
                         pixel + (metrics.ascent() - metrics.descent()) / 2, text);
    }
}

/// On a ground of its own, so that a dense curve does not hide it.
void paintOverCurve(QPainter& painter, QPointF base, const QString& text)
{
    constexpr QColor Ground(40, 40, 40, 200);
    const QFontMetrics metrics(painter.font());
    painter.fillRect(QRectF(base.x() - 1, base.y() - metrics.capHeight() - 2,
                            metrics.horizontalAdvance(text) + 2, metrics.capHeight() + 3),
                     Ground);
    painter.drawText(base, text);
}

void paintReadout(QPainter& painter, const Picture& picture)
{
    const auto& [point, x, y] = *picture.readout;
    painter.setPen(ReadoutColour);
    painter.drawLine(point - QPointF(3, 0), point + QPointF(3, 0));
    painter.drawLine(point - QPointF(0, 3), point + QPointF(0, 3));
    painter.setFont(fontOf(12));
    const QString text =
        '(' + xText(picture, x, 3) + ", " + shortText(y, picture.frame.wholeX ? 6 : 3) + ')';
    const QFontMetrics metrics(painter.font());
    const PlotFrame& frame = picture.frame;
    paintOverCurve(painter,
                   QPointF(frame.size.width() - frame.right - 4 - metrics.horizontalAdvance(text),
                           metrics.height() + frame.top + 3),
                   text);
}

/// An arrow head whose tip lies at a point; `length` is negative for one that points to the right.
void paintHead(QPainter& painter, QPointF tip, double length)
{
    painter.drawPolygon(QPolygonF({tip, tip + QPointF(length, -2), tip + QPointF(length, 2)}));
}

/// Measures in two rows. A label that would cover the one before it in its row is left out: there
/// is room for it further in.
void paintArrows(QPainter& painter, const Picture& picture)
{
    constexpr double Gap = 4;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(fontOf(10));
    painter.setPen(Qt::white);
    painter.setBrush(Qt::white);
    const QFontMetrics metrics(painter.font());
    std::array<double, 2> ends{-Gap, -Gap};  // of the labels of both rows
    for (const LeftRightArrow& arrow : picture.arrows) {
        const int base =
            picture.frame.top + (arrow.level ? 3 * metrics.height() + 9 : 2 * metrics.height() + 6);
        const QPointF left(picture.scale.pixelOf(arrow.left), base + 2);
        const QPointF right(picture.scale.pixelOf(arrow.right), base + 2);
        painter.drawLine(left + QPointF(3, 0), right - QPointF(3, 0));
        paintHead(painter, left, 4);
        paintHead(painter, right, -4);
        const int width = metrics.horizontalAdvance(arrow.text);
        const double start = (left.x() + right.x() - width) / 2;
        double& end = ends.at(arrow.level ? 1 : 0);
        if (start < end + Gap)
            continue;
        paintOverCurve(painter, QPointF(start, base), arrow.text);
        end = start + width;
    }
    painter.restore();
}

/// The curve, interrupted where rows are masked; a point between two gaps is a dot.
void paintRuns(QPainter& painter, const Picture& picture)
{
    const auto& graph = picture.scale.graph;
    for (std::size_t begin = 0; begin < graph.size(); ++begin) {
        std::size_t end = begin;
        while (end < graph.size() && !masked(picture.rows[end]))
            ++end;
        if (end - begin > 1)
            painter.drawPolyline(&graph[begin], static_cast<int>(end - begin));
        else if (end > begin)
            painter.fillRect(QRectF(graph[begin] - QPointF(1, 1), QSizeF(3, 3)), Qt::white);
        begin = end;
    }
}

void paintMarker(QPainter& painter, const Picture& picture, const QRect& area)
{
    painter.setPen(QPen(ReadoutColour, 1, Qt::DashLine));
    const double x = picture.scale.pixelOf(*picture.marker);
    painter.drawLine(QPointF(x, area.top() + 1), QPointF(x, area.bottom()));
    painter.setPen(Qt::white);
}

}  // namespace

void paint(QPainter& painter, const Picture& picture)
{
    const PlotFrame& frame = picture.frame;
    const QRect area(frame.left, frame.top, frame.plotWidth(), frame.plotHeight());
    painter.setPen(Qt::white);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(area);
    painter.setFont(fontOf(12));
    painter.drawText(frame.size.width() - 24 - frame.right, frame.top - 5, QStringLiteral("Log"));
    if (!picture.scale.graph.empty()) {
        if (picture.dragged) {
            const auto [from, to] = std::minmax(picture.dragged->first, picture.dragged->second);
            painter.fillRect(QRectF(from, area.top() + 1, to - from, area.height() - 1),
                             QColor(255, 255, 255, 50));
        }
        painter.setClipRect(area.adjusted(0, 0, 1, 1));
        if (picture.marker)
            paintMarker(painter, picture, area);
        if (frame.wholeX)
            paintRuns(painter, picture);
        else
            painter.drawPolyline(picture.scale.graph.data(), int(picture.scale.graph.size()));
        paintArrows(painter, picture);
        painter.setClipping(false);
        const int width = QFontMetrics(painter.font()).horizontalAdvance(picture.xLabel);
        painter.drawText(area.center().x() - width / 2, frame.size.height() - frame.bottom + 31,
                         picture.xLabel);
    }
    paintXTicks(painter, picture);
    painter.drawText(frame.left, frame.top - 5, picture.yLabel);
    paintYTicks(painter, picture);
    if (picture.readout)
        paintReadout(painter, picture);
}

}  // namespace plot
