// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The region of interest.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "logic/records/StatisticsData.h"

class QPainter;

namespace render {

/// Draws a region that is defined and active: darkened, in black with white dashes, so that it can
/// be seen on any image.
void drawRegion(QPainter& painter, const ViewGeometry& geometry, const StatisticsData& region);

}  // namespace render
