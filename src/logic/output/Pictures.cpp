// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/output/Pictures.h"

#include "imagelib/display/MColorMap.h"
#include "imagelib/io/formats/base/Cancellation.h"
#include "logic/support/GlobalStyle.h"

#include <QFont>
#include <QPainter>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <string>

using namespace morvend;
using namespace morvend::imglib;

namespace {

/// Coordinates beyond it are not painted.
constexpr std::int64_t MostSide = 32767;

/// The colours of a part of the rows, into the rows of a picture.
void colour(const ImageSnapshot& snapshot, int top, int rows, QImage& picture)
{
    const MImage& image = snapshot.image;
    const ContrastData& contrast = snapshot.contrast;
    MRect part(0, top, image.width(), rows);
    MImage colours;
    MColorMap::rgb(
        colours, image, contrast.foreground, contrast.background, contrast.logForeground(),
        *contrast.colorTable, "ARGB", &snapshot.mask, &part,
        image.optionalData().saturation_value().value_or(std::numeric_limits<int>::max()),
        snapshot.highlightDefective, snapshot.highlightSaturated);
    const auto width = static_cast<std::size_t>(image.width());
    const auto* from = static_cast<const std::uint32_t*>(colours.cdata());
    for (int row = 0; row < rows; ++row, from += width)
        std::memcpy(picture.scanLine(top + row), from, width * sizeof(*from));
}

QImage white(int width, int height)
{
    QImage canvas(width, height, QImage::Format_ARGB32_Premultiplied);
    if (!canvas.isNull())
        canvas.fill(Qt::white);
    return canvas;
}

}  // namespace

QImage pictures::colorLegend(const ContrastData& contrast, int width, int height)
{
    if (width <= 0 || height <= 0 || width > MostSide || height > MostSide)
        return {};
    QImage legend = white(width, height);
    const int barWidth = width / 3;
    const int barHeight = static_cast<int>(height * 0.9);
    if (legend.isNull() || barWidth == 0 || barHeight == 0 || !contrast.colorTable)
        return legend;
    MImage bar(barWidth, barHeight, 0);
    std::map<int, double> ticks;
    MColorMap::legend(bar, ticks, contrast.foreground, contrast.background,
                      contrast.logForeground(), *contrast.colorTable, "ARGB");
    const int left = static_cast<int>(width * 0.9 - barWidth);
    const int top = (height - barHeight) / 2;
    const int tick = width / 30;
    constexpr int LabelWidth = 70;

    QPainter painter(&legend);
    painter.drawImage(left, top,
                      QImage(static_cast<const uchar*>(bar.cdata()), barWidth, barHeight,
                             qsizetype(barWidth) * 4, QImage::Format_ARGB32_Premultiplied));
    painter.setPen(Qt::black);
    painter.setFont(QFont(GLOBALSTYLE::fontFamily));
    for (const auto& [row, value] : ticks) {
        const int y = top + row;
        painter.drawLine(left - tick, y, left, y);
        painter.drawText(left - tick - LabelWidth, y + width / 20,
                         QStringLiteral("%1").arg(value, 0, 'g', 5));
    }
    return legend;
}

QImage pictures::ofImage(const ImageSnapshot& snapshot, const Progress& progress)
{
    const MImage& image = snapshot.image;
    QImage picture(image.width(), image.height(), QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        throw MRuntimeException("There is no memory for a picture of " +
                                std::to_string(image.width()) + " x " +
                                std::to_string(image.height()) + " pixels");
    constexpr int PixelsAtATime = 1 << 20;
    const int step = std::max(PixelsAtATime / image.width(), 1);
    for (int top = 0; top < image.height(); top += step) {
        checkCancelled();
        colour(snapshot, top, std::min(step, image.height() - top), picture);
        if (progress)
            progress(static_cast<double>(top) / image.height());
    }
    return picture;
}

bool pictures::holdsLegend(const MRect& rect) { return rect.width() > 0 && rect.height() > 0; }

QImage pictures::withLegend(const QImage& picture, const ContrastData& contrast, const MRect& rect)
{
    if (!holdsLegend(rect))
        return picture;
    // In 64 bits, as scripts may name any rectangle.
    const auto extent = [](std::int64_t begin, std::int64_t length, std::int64_t size) {
        return std::max(begin + length, size) + std::max<std::int64_t>(-begin, 0);
    };
    const std::int64_t width = extent(rect.left(), rect.width(), picture.width());
    const std::int64_t height = extent(rect.top(), rect.height(), picture.height());
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    if (width > MostSide || height > MostSide)
        throw MBadParameterException("A picture of " + size +
                                     " pixels with a colour bar is larger "
                                     "than the " +
                                     std::to_string(MostSide) +
                                     " pixels that can be painted in a row");
    QImage canvas = white(static_cast<int>(width), static_cast<int>(height));
    if (canvas.isNull())
        throw MRuntimeException("There is no memory for a picture of " + size + " pixels");
    checkCancelled();
    QPainter painter(&canvas);
    painter.drawImage(std::max(-rect.left(), 0), std::max(-rect.top(), 0), picture);
    painter.drawImage(rect.left(), rect.top(), colorLegend(contrast, rect.width(), rect.height()));
    return canvas;
}
