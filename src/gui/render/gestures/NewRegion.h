// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A new region of interest drawn with the mouse, as arithmetic on records.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "logic/records/StatisticsData.h"

#include <QPoint>
#include <QPointF>

namespace render {

/// Draws a region of the record's kind from the press of a button on. The fields of all kinds are
/// kept up, so that they are valid after a change of kind. A value; pure.
class NewRegion {
public:
    NewRegion() = default;

    /// Where a powder ring begins.
    struct PowderStart {
        /// In image pixels; NaN while unknown.
        QPointF centre;
        /// In image pixels, negative while the centre is not known.
        int radius = 0;
    };

    /// The region at the press.
    /// @param point  in image pixels
    /// @param powder  used for powder rings only
    StatisticsData begin(const StatisticsData& region, QPointF point, const PowderStart& powder);
    /// The region after a move of the cursor.
    /// @param powderRadius  from the beam centre to the pixel under the cursor; a negative one, of
    /// an unknown beam centre, leaves both radii unchanged
    StatisticsData extend(const StatisticsData& region, const ViewGeometry& geometry, QPoint cursor,
                          int powderRadius) const;

    /// The pixel that contains a point of an image, by truncation.
    static QPoint pixelOf(QPointF imagePoint);

private:
    int _startRadius = 0;
};

}  // namespace render
