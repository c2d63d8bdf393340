// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixel values as text over the pixels.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "imagelib/image/MImage.h"

#include <QString>

#include <functional>

class QPainter;

namespace render {

/// Where the overlay gets its texts and the colours under them from.
struct PixelSource {
    /// The text of a pixel's value.
    std::function<QString(int x, int y)> text;
    /// The colours of a part of the image, in the layout of QImage::Format_ARGB32.
    std::function<morvend::imglib::MImage(int x, int y, int width, int height)> colours;
};

/// Screen pixels for each image pixel at which the values fit.
constexpr int pixelValueZoom = 64;

/// Writes the values of all visible pixels for a view at that zoom, in black or white according to
/// the colours below.
void drawPixelValues(QPainter& painter, const ViewGeometry& geometry, const PixelSource& source);

}  // namespace render
