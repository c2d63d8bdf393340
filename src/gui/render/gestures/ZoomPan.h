// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Zoom and pan as arithmetic on viewports.
#pragma once

#include "logic/records/ViewportData.h"

#include <QPoint>
#include <QPointF>
#include <QSize>

namespace render {

/// The image centred at one screen pixel for each image pixel.
ViewportData centredViewport(QSize image, QSize view);

/// The whole image centred at the largest zoom at which it fits; at the smallest zoom if it fits at
/// none. Keeps the rotation.
ViewportData fittedViewport(const ViewportData& current, QSize image, QSize view);

/// One step in or out, keeping an image point at a screen point.
/// @param step  as a power of two, clamped with the zoom power's range
ViewportData zoomedAbout(const ViewportData& viewport, QPointF imagePoint, QPointF screenPoint,
                         int step);

/// The same image point in the middle of a view whose size has changed.
ViewportData resized(const ViewportData& viewport, QSize before, QSize after);

/// The step of a turn of the wheel, forward +1, back -1, none 0. A sideways turn counts if there
/// is no other.
int wheelStep(QPoint angleDelta);

/// Moved by a drag.
/// @param drag  screen pixels since the last step; fractions of image pixels are kept
/// @param pixelSize  screen pixels for each image pixel of what is dragged
/// @param direction  +1 moves the image with the cursor, -1 against it
ViewportData panned(const ViewportData& viewport, QPoint drag, double pixelSize, int direction);

/// The viewport to adopt when `wanted` follows on `current`. A move may not enlarge the empty
/// border around the image; each axis is decided by itself. A change of zoom is taken as it is.
ViewportData withoutWiderBorder(const ViewportData& wanted, const ViewportData& current,
                                QSize image, QSize view);

}  // namespace render
