// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Scrolling to what has just appeared.
#pragma once

class QScrollArea;
class QWidget;

/// Scrolls an area up or down as little as it takes to see a part of its content, also one that has
/// just been shown or has grown. Of a part that is taller than the area, the upper end is seen.
/// Does nothing for a part that is hidden or stands elsewhere. Thread: GUI only.
/// @param above  pixels above the part that belong to it
void scrollIntoSight(QScrollArea& area, QWidget& part, int above = 0);
