// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which pixel of an image each pixel of the screen shows.
#pragma once

#include "logic/records/ViewportData.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>

namespace render {

/// The image pixel under the centre of each screen pixel, in whole numbers: column x of the screen
/// shows column floor((start + x * step) / divisor) of the image, and rows likewise.
///
/// Both ways of drawing follow it, so that they agree on each pixel whatever the zoom, the offset
/// and the scale of the desktop are. A centre on the border of two image pixels, which is the rule
/// at zoom 1/2 and 1/4, belongs to the one on the left or above: at zoom 1/2 that is the one that
/// the mouse cursor names there. A value; pure.
class ScreenPixels {
public:
    /// @param view  size of the view in the unit of widget coordinates
    /// @param devicePixelRatio  screen pixels for each of these units; taken as the nearest
    /// fraction of whole numbers for which x * step stays below 2^21
    ScreenPixels(QSize view, const ViewportData& viewport, double devicePixelRatio);

    /// The same for blocks of `side` times `side` image pixels, counted from the first one: each
    /// screen pixel shows the block that its image pixel is in.
    ScreenPixels ofBlocks(int side) const;

    /// In screen pixels.
    QSize size() const { return _size; }
    int column(int x) const;
    int row(int y) const;
    /// The screen pixels that show a part of the image; empty for none.
    QRect showing(const QRect& part) const;

    int step() const { return int(_step); }
    int divisor() const { return int(_divisor); }
    /// What is left at a screen pixel after its whole image pixels: (start + x * step) modulo
    /// the divisor.
    QPoint remainder(QPoint screen) const;

private:
    QSize _size;
    std::int64_t _step = 1;
    std::int64_t _divisor = 1;
    std::int64_t _startX = 0;
    std::int64_t _startY = 0;
};

}  // namespace render
