// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/PaintList.h"

#include "gui/render/overlays/Marks.h"
#include "imagelib/image/PixelTypes.h"

#include <QPainter>
#include <QTransform>

#include <cmath>

namespace render {

namespace {

using namespace morvend::imglib;

constexpr int arm = 10;
constexpr int fontSize = 12;

bool liesIn(QSize view, QPoint point)
{
    return point.x() >= 0 && point.y() >= 0 && point.x() <= view.width() &&
           point.y() <= view.height();
}

void draw(QPainter& painter, const ViewGeometry& geometry, const MDrawingPixel& pixel)
{
    const QPoint centre = geometry.screenPoint(pixel.x() + 0.5, pixel.y() + 0.5);
    if (liesIn(geometry.view(), centre))
        marks::drawCross(painter, centre, arm, geometry.view());
}

void draw(QPainter& painter, const ViewGeometry& geometry, const MDrawingLine& line)
{
    const QPolygonF points({geometry.screenPoint(line.xBegin(), line.yBegin()),
                            geometry.screenPoint(line.xEnd(), line.yEnd())});
    marks::drawOutline(painter, Outline::along(points), marks::windowOf(geometry.view()));
}

void draw(QPainter& painter, const ViewGeometry& geometry, const MDrawingString& text)
{
    const QPoint start = geometry.screenPoint(text.x() + 0.5, text.y() + 0.5);
    if (!liesIn(geometry.view(), start))
        return;
    painter.setFont(marks::font(fontSize));
    painter.drawText(start, QString::fromStdString(text.text()));
}

void draw(QPainter& painter, const ViewGeometry& geometry, const MDrawingEllipse& ellipse)
{
    if (!std::isfinite(ellipse.rotation()))
        return;
    const QPointF centre = geometry.screenPoint(ellipse.x(), ellipse.y());
    const double sine = std::sin(ellipse.rotation());
    const double cosine = std::cos(ellipse.rotation());
    const QTransform turn(cosine, sine, -sine, cosine, centre.x(), centre.y());
    using morvend::datatypes::convertPixel;
    const double a = convertPixel<int>(ellipse.rx() * geometry.zoom());
    const double b = convertPixel<int>(ellipse.ry() * geometry.zoom());
    // Rotated here, since the painter's single precision is too coarse for large ones.
    const QRectF window = marks::windowOf(geometry.view());
    const Outline upright =
        Outline::ellipse(QRectF(-a, -b, 2 * a, 2 * b), turn.inverted().mapRect(window));
    marks::drawOutline(painter, upright.mapped(turn), window);
}

}  // namespace

void drawPaintList(QPainter& painter, const ViewGeometry& geometry, const MDrawingList<>& list)
{
    for (std::size_t i = 0; i < list.size(); ++i) {
        const MDrawingPrimitive& item = list[i];
        painter.save();
        painter.setPen(QColor(item.red(), item.green(), item.blue(), item.alpha()));
        switch (item.type()) {
        case MDrawingPrimitive::PIXEL:
            draw(painter, geometry, static_cast<const MDrawingPixel&>(item));
            break;
        case MDrawingPrimitive::LINE:
            draw(painter, geometry, static_cast<const MDrawingLine&>(item));
            break;
        case MDrawingPrimitive::STRING:
            draw(painter, geometry, static_cast<const MDrawingString&>(item));
            break;
        case MDrawingPrimitive::ELLIPSE:
            draw(painter, geometry, static_cast<const MDrawingEllipse&>(item));
            break;
        default:
            break;
        }
        painter.restore();
    }
}

}  // namespace render
