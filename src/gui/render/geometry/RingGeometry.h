// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where rings of constant resolution and their labels are in a view.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

#include <optional>

namespace render {

/// How many rings a view asks for: three over the whole image, more as the visible part gets
/// smaller; 0 when nothing is visible. At most three for each column of the image. Pure.
int ringCount(const ViewGeometry& geometry);

/// A ring in screen pixels.
struct ScreenRing {
    QRect box;
    QPoint centre;
    int radius = 0;
};

/// The ring as drawn; nothing if no part of it can be within the view, or if it is NaN.
/// @param centre  in image pixels
/// @param radius  in image pixels
std::optional<ScreenRing> screenRing(QPointF centre, double radius, const ViewGeometry& geometry);

/// The point that the label of a ring starts from: its topmost point, where it meets the upper,
/// left or right edge of what the image covers, or its leftmost point; nothing if none of these is
/// visible.
std::optional<QPoint> labelAnchor(const ScreenRing& ring, const QRect& boundary);

/// The upper left corner of a label, kept within the part that the image covers.
QPoint labelCorner(QPoint anchor, QSize text, const QRect& boundary);

}  // namespace render
