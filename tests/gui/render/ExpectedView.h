// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The picture that a view must show, from the colour map and plain arithmetic.
#pragma once

#include "imagelib/display/MColorMap.h"
#include "logic/service/TarvikService.h"

#include <QColor>
#include <QImage>

#include <cmath>
#include <limits>
#include <string>

/// The colours of the service's whole image under its contrast and highlights.
inline morvend::imglib::MImage colouredImage(const TarvikService& service)
{
    using namespace morvend::imglib;
    const MImage& image = service.image();
    const ContrastData contrast = service.contrastData();
    const auto& saturation = image.optionalData().saturation_value();
    const bool saturated = service.highlightSaturated() && saturation;
    MImage result;
    MColorMap::rgb(result, image, contrast.foreground, contrast.background,
                   contrast.logForeground(), *contrast.colorTable, "ARGB",
                   &*image.optionalData().pixel_mask(), nullptr,
                   saturated ? *saturation : std::numeric_limits<int>::max(),
                   service.highlightDefective(), saturated);
    return result;
}

/// Compares a picture of a view with the coloured image, nearest pixel by nearest pixel. Where the
/// centre of a pixel of the screen lies on a border, the image pixel before it is the nearest.
/// @param ratio  pixels of the picture for each one of the view
/// @returns the first difference in words, empty for none
inline std::string differenceFromImage(const QImage& picture, const TarvikService& service,
                                       double ratio, QRgb background)
{
    const morvend::imglib::MImage colours = colouredImage(service);
    const ViewportData viewport = service.viewportData();
    const double scale = viewport.zoom() * ratio;
    for (int py = 0; py < picture.height(); ++py) {
        for (int px = 0; px < picture.width(); ++px) {
            const double x = (px + 0.5) / scale + viewport.offsetX;
            const double y = (py + 0.5) / scale + viewport.offsetY;
            const auto wanted = colours.pixel<unsigned int>(
                static_cast<int>(std::ceil(x)) - 1, static_cast<int>(std::ceil(y)) - 1, background);
            if (const QRgb shown = picture.pixel(px, py); shown != wanted)
                return QString::asprintf("at (%d, %d), image (%g, %g): %08x, not %08x, power %d",
                                         px, py, x, y, shown, wanted, viewport.zoomPower)
                    .toStdString();
        }
    }
    return {};
}
