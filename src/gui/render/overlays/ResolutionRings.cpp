// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/ResolutionRings.h"

#include "gui/render/geometry/RingGeometry.h"
#include "gui/render/overlays/Marks.h"
#include "logic/service/TarvikService.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextOption>

#include <limits>

namespace render {

namespace {

constexpr int fontSize = 14;
/// White around the text of a label.
constexpr int labelMargin = 5;

void drawLabel(QPainter& painter, QPoint anchor, const QString& label, const QRect& boundary)
{
    const QFontMetrics metrics(painter.font(), painter.device());
    const QSize text(metrics.horizontalAdvance(label), metrics.height());
    const QPoint corner = labelCorner(anchor, text, boundary);
    painter.fillRect(QRect(corner, text + QSize(2 * labelMargin, 2 * labelMargin)), Qt::white);
    // Widths are rounded, and a label wrapped because of half a pixel loses all but its first
    // digit.
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    painter.drawText(QRectF(corner + QPoint(labelMargin, labelMargin), text), label, option);
}

}  // namespace

ResolutionRings::Origin ResolutionRings::_originOf(int count, const TarvikService& service)
{
    const auto& header = service.optionalData();
    const auto number = [](const auto& field) {
        return field ? double(*field) : std::numeric_limits<double>::quiet_NaN();
    };
    return {count,
            service.imageSize(),
            {number(header.beam_center_x()), number(header.beam_center_y()),
             number(header.x_pixel_size()), number(header.y_pixel_size()),
             number(header.detector_distance()), number(header.wavelength())}};
}

void ResolutionRings::draw(QPainter& painter, const ViewGeometry& geometry, const QRect& boundary,
                           const TarvikService& service)
{
    const int count = ringCount(geometry);
    if (count == 0)
        return;
    if (const Origin origin = _originOf(count, service); origin != _origin) {
        _origin = origin;
        service.recommendResolutionRadius(count, _ringCentreX, _ringCentreY, _ringRadii,
                                          _ringLabels);
    }
    painter.setPen(QPen(Qt::blue));
    painter.setFont(marks::font(fontSize));
    painter.setClipRect(boundary, Qt::ReplaceClip);
    const QRectF window = marks::windowOf(geometry.view());
    for (std::size_t i = 0; i < _ringRadii.size(); ++i) {
        const auto ring = screenRing({_ringCentreX, _ringCentreY}, _ringRadii[i], geometry);
        if (!ring)
            continue;
        marks::drawOutline(painter, Outline::ellipse(ring->box, window), window);
        if (const auto anchor = labelAnchor(*ring, boundary))
            drawLabel(painter, *anchor, _ringLabels[i], boundary);
    }
    painter.setClipping(false);
}

}  // namespace render
