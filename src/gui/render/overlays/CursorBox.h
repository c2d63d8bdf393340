// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The values under the cursor, beside it.
#pragma once

#include "logic/service/CursorInfo.h"

#include <QPoint>
#include <QSize>

class QPainter;
class QRect;

namespace render {

/// True if the box has space for distance and resolution: when both are known.
bool cursorBoxExtended(const CursorInfo& info);
/// The area that the box darkens: right below the cursor, or to its left or above it where the view
/// ends. Pure.
QRect cursorBoxArea(QPoint cursor, QSize view, bool extended);

/// Draws the box for a cursor within the view.
void drawCursorBox(QPainter& painter, QPoint cursor, QSize view, const CursorInfo& info);

}  // namespace render
