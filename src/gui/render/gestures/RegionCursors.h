// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Cursors that show what a drag of the mouse will do.
#pragma once

#include "gui/render/gestures/RegionHitTest.h"

#include <QCursor>

namespace render {

/// The cursors of the main view, with their hot spots in the centre.
class RegionCursors {
public:
    RegionCursors();

    /// Off any region.
    const QCursor& cross() const { return _cross; }
    /// On the section through a circle.
    const QCursor& rotation() const { return _rotation; }
    const QCursor& of(RegionHandle handle) const;

private:
    QCursor _cross;
    QCursor _rotation;
    QCursor _hand;
    QCursor _allWays;
    QCursor _leftRight;
    QCursor _upDown;
};

}  // namespace render
