// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The mark of the visible part in a thumbnail.
#pragma once

#include <QRectF>

class QPainter;

namespace render {

/// The part that a main view shows, in pixels of a thumbnail. Pure.
/// @param visible  in image pixels
/// @param scale  thumbnail pixels for each image pixel
QRectF thumbnailFrame(const QRectF& visible, double scale);
/// True if the frame is so small that only a cross makes it visible. Pure.
bool frameNeedsCross(const QRectF& frame);

/// Darkens the frame, and marks a small one by a cross.
void drawThumbnailFrame(QPainter& painter, const QRectF& frame);

}  // namespace render
