// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which part of a region of interest is under the cursor.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "logic/records/StatisticsData.h"

#include <QPoint>

#include <optional>

namespace render {

/// A part of a region of interest that can be grabbed.
enum class RegionHandle : int {
    Body = 0,
    LineBegin = 1,
    LineEnd = 2,
    EdgeBeginX = 3,
    EdgeBeginY = 4,
    EdgeEndX = 5,
    EdgeEndY = 6,
    CornerBeginBegin = 7,  ///< at beginX, beginY
    CornerBeginEnd = 8,    ///< at beginX, endY
    CornerEndEnd = 9,      ///< at endX, endY
    CornerEndBegin = 10,   ///< at endX, beginY
    CircleRim = 11,
    InnerRim = 12,
    OuterRim = 13,
    PowderCentre = 14
};

/// The handle under the cursor, none off the region. Pure.
std::optional<RegionHandle> regionHandleAt(const StatisticsData& region,
                                           const ViewGeometry& geometry, QPoint cursor);

/// True if the cursor is on the section through a free circle, where a drag turns it. Pure.
bool nextToDiameter(const StatisticsData& region, const ViewGeometry& geometry, QPoint cursor);

}  // namespace render
