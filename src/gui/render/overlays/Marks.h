// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Small marks and pens that several overlays share.
#pragma once

#include "gui/render/overlays/Outline.h"

#include <QPen>
#include <QPoint>
#include <QSize>

class QColor;
class QFont;
class QPainter;

namespace render::marks {

/// A pen for lines that end and bend squarely.
QPen squarePen(const QColor& color, double width);
/// The font of texts over an image, of a size in points.
QFont font(int points);
/// An upright cross in the colour and width of the painter's pen, whose arms have a given length
/// from a pixel; nothing if all of it is
/// outside of a view of that size.
void drawCross(QPainter& painter, QPoint centre, int arm, QSize view);
/// The part of a view to be drawn, with a margin for the width of lines.
QRectF windowOf(QSize view);
/// Draws the visible part of an outline with the painter's pen.
void drawOutline(QPainter& painter, const Outline& outline, const QRectF& window);

}  // namespace render::marks
