// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A drag of a region of interest, or of one of its handles, as arithmetic on records.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "gui/render/gestures/RegionHitTest.h"
#include "logic/records/StatisticsData.h"

#include <QPoint>

#include <optional>

namespace render {

/// Moves a region by whole image pixels. Screen pixels that do not yet amount to one are kept for
/// the next step, so that a slow drag at a high zoom loses nothing, and below zoom 1 one screen
/// pixel makes several image pixels. A value; pure.
class RegionDrag {
public:
    RegionDrag() = default;
    /// A drag that begins at a cursor position.
    explicit RegionDrag(QPoint cursor)
        : _last(cursor)
    {}

    /// The region after a move of the cursor, nothing while the move is less than an image pixel.
    /// @param handle  the part that is held; a rim of a powder ring that crosses the other becomes
    /// the other
    std::optional<StatisticsData> move(const StatisticsData& region, const ViewGeometry& geometry,
                                       QPoint cursor, RegionHandle& handle);

private:
    struct Step {
        int x = 0;
        int y = 0;
        int radius = 0;
    };
    std::optional<Step> step(const StatisticsData& region, const ViewGeometry& geometry,
                             QPoint cursor);

    QPoint _last;
    int _residualX = 0;
    int _residualY = 0;
    int _residualRadius = 0;
};

/// The section through a free circle turned towards the cursor.
StatisticsData turned(const StatisticsData& region, const ViewGeometry& geometry, QPoint cursor);

/// The centre of a powder ring moved to the cursor; nothing if that would be nearer than five
/// screen pixels to the border of the view.
std::optional<StatisticsData> recentred(const StatisticsData& region, const ViewGeometry& geometry,
                                        QPoint cursor);

}  // namespace render
