// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/HistogramPainter.h"

#include "logic/support/GlobalStyle.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace panels {
namespace {

using namespace histogramplace;

const QString IntensityName = QStringLiteral("Intensity");
const QString CountName = QStringLiteral("# Pixels");
const QString LogName = QStringLiteral("Log");
const QColor CursorColour(0, 25, 100);
const QColor ReadoutColour(155, 170, 255);

/// Texts and box in the middle of an axis.
AxisTexts centred(const QString& name, int middle)
{
    constexpr int Gap = 6;
    constexpr int BoxGap = 2;
    const QFontMetrics metrics(axisFont());
    const int box = metrics.horizontalAdvance(name) + Gap;
    const int log = box + AxisBox + BoxGap;
    const int start = middle - (log + metrics.horizontalAdvance(LogName)) / 2;
    return {start, start + box, start + log};
}

void paintFrame(QPainter& painter)
{
    const QRect frame(10, 10, 310, 180);
    constexpr int TitleX = 30;
    const QString title = QStringLiteral("Histogram");
    painter.setFont(QFont(GLOBALSTYLE::fontFamily, 12));
    const QFontMetrics metrics(painter.font());
    const int titleEnd = TitleX + metrics.horizontalAdvance(title);
    painter.setPen(Qt::white);
    painter.drawPolyline(QPolygon({{TitleX - 4, frame.top()},
                                   frame.topLeft(),
                                   {frame.left(), frame.top() + frame.height()},
                                   {frame.left() + frame.width(), frame.top() + frame.height()},
                                   {frame.left() + frame.width(), frame.top()},
                                   {titleEnd + 4, frame.top()}}));
    painter.drawText(TitleX, frame.top() + metrics.capHeight() / 2, title);
}

void paintAxes(QPainter& painter)
{
    painter.setFont(axisFont());
    painter.setPen(Qt::white);
    const AxisTexts along = intensityTexts();
    painter.drawText(along.name, IntensityLine, IntensityName);
    painter.drawText(along.log, IntensityLine, LogName);
    const AxisTexts upward = countTexts();
    painter.save();
    painter.translate(CountLine, Bottom);
    painter.rotate(-90);
    painter.drawText(upward.name, 0, CountName);
    painter.drawText(upward.log, 0, LogName);
    painter.restore();
}

void paintBars(QPainter& painter, const HistogramModel& model)
{
    const HistogramScale& scale = model.scale();
    const Bins& bins = model.bins();
    for (std::size_t i = 0; i < BinCount; ++i) {
        const int left = scale.pixelOf(bins.edges(scale.logX)[i]);
        const int right = scale.pixelOf(bins.edges(scale.logX)[i + 1]);
        const double height = scale.heightOf(bins.counts(scale.logX)[i]);
        painter.fillRect(QRectF(left, Bottom - height, right - left, height), Qt::white);
    }
}

void paintZones(QPainter& painter, const HistogramModel& model, const HistogramPicture& picture)
{
    const int foreground = std::min(model.foreground() + 2, Right);
    painter.fillRect(foreground, Top, Right - foreground, Bottom - Top, picture.foregroundZone);
    const int width = std::min(model.background() - Left, Right - Left);
    painter.fillRect(Left, Top, width, Bottom - Top, picture.backgroundZone);
}

void paintColourBar(QPainter& painter, const HistogramPicture& picture)
{
    for (std::size_t column = 0; column < picture.colours.size(); ++column)
        painter.fillRect(First + int(column), BarTop, 1, BarBottom - BarTop + 1,
                         QColor::fromRgb(picture.colours[column]));
}

QColor markColour(QRgb below, bool darkMark)
{
    if (darkMark)
        return Qt::black;
    const bool dark = QColor::fromRgb(below).value() < 128;
    return QColor::fromHsv(CursorColour.hue(), CursorColour.saturation(), dark ? 255 : 0);
}

void paintReadout(QPainter& painter, const HistogramPicture& picture)
{
    const auto& [point, text] = *picture.readout;
    painter.setPen(CursorColour);
    painter.drawLine(point - QPointF(3, 0), point + QPointF(3, 0));
    painter.drawLine(point - QPointF(0, 3), point + QPointF(0, 3));
    painter.setFont(axisFont());
    painter.setPen(ReadoutColour);
    const QFontMetrics metrics(painter.font());
    painter.drawText(305 - metrics.horizontalAdvance(text), Top - metrics.descent() - 4, text);
    const std::size_t column = std::size_t(point.x()) - First;
    if (column >= picture.colours.size())
        return;
    painter.fillRect(QRectF(point.x(), BarTop, 1, BarBottom - BarTop + 1),
                     markColour(picture.colours[column], picture.darkMark));
}

}  // namespace

QFont axisFont() { return {GLOBALSTYLE::fontFamily, 10}; }

AxisTexts intensityTexts() { return centred(IntensityName, (First + Last) / 2); }

AxisTexts countTexts() { return centred(CountName, (Bottom - Top) / 2); }

void paint(QPainter& painter, const HistogramModel& model, const HistogramPicture& picture)
{
    paintFrame(painter);
    if (picture.empty)
        return;
    paintAxes(painter);
    paintBars(painter, model);
    paintZones(painter, model, picture);
    paintColourBar(painter, picture);
    if (picture.readout)
        paintReadout(painter, picture);
}

}  // namespace panels
