// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/PixelValues.h"

#include "gui/render/overlays/Marks.h"

#include <QFontMetrics>
#include <QPainter>
#include <QRgb>

#include <algorithm>
#include <cmath>
#include <vector>

namespace render {

namespace {

constexpr int largestFont = 12;
constexpr int smallestFont = 6;
/// From the lower left corner of a pixel.
constexpr int margin = 5;

double luminance(QRgb color)
{
    return (0.0722 * qBlue(color) + 0.2126 * qRed(color) + 0.7152 * qGreen(color)) / 255;
}

/// The fonts to choose from, largest first.
class Fonts {
public:
    explicit Fonts(const QPainter& painter)
    {
        for (int points = largestFont; points >= smallestFont; --points) {
            const QFont font = marks::font(points);
            _fonts.push_back({font, QFontMetrics(font, painter.device())});
        }
    }
    /// The largest font in which a text fits into a pixel, else the smallest.
    const QFont& fitting(const QString& text) const
    {
        const auto fits = [&](const Entry& entry) {
            return entry.metrics.horizontalAdvance(text) <= pixelValueZoom;
        };
        return std::find_if(_fonts.begin(), _fonts.end() - 1, fits)->font;
    }

private:
    struct Entry {
        QFont font;
        QFontMetrics metrics;
    };
    std::vector<Entry> _fonts;
};

/// The visible pixels of the image; never more than fit into the view.
QRect visiblePixels(const ViewGeometry& geometry)
{
    const QRectF range = geometry.visibleRange();
    if (!(range.width() > 0 && range.height() > 0))
        return {};
    const int x = static_cast<int>(std::floor(range.left()));
    const int y = static_cast<int>(std::floor(range.top()));
    const int columns = static_cast<int>(std::ceil(range.right())) - x;
    const int rows = static_cast<int>(std::ceil(range.bottom())) - y;
    return {x, y, std::min(columns, geometry.view().width() / pixelValueZoom + 2),
            std::min(rows, geometry.view().height() / pixelValueZoom + 2)};
}

}  // namespace

void drawPixelValues(QPainter& painter, const ViewGeometry& geometry, const PixelSource& source)
{
    const QRect pixels = visiblePixels(geometry);
    if (pixels.isEmpty())
        return;
    const auto colours = source.colours(pixels.x(), pixels.y(), pixels.width(), pixels.height());
    const auto* color = static_cast<const QRgb*>(colours.cdata());
    const Fonts fonts(painter);
    const QPoint start(geometry.screenX(pixels.left()) + margin,
                       geometry.screenY(pixels.top() + 1) - margin);
    for (int row = 0; row < pixels.height(); ++row) {
        for (int column = 0; column < pixels.width(); ++column) {
            const QString text = source.text(pixels.x() + column, pixels.y() + row);
            painter.setFont(fonts.fitting(text));
            painter.setPen(QPen(luminance(*color++) > 0.5 ? Qt::black : Qt::white));
            painter.drawText(start + QPoint(column, row) * pixelValueZoom, text);
        }
    }
}

}  // namespace render
