// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The mark of the beam centre.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"

class QPainter;

namespace render {

/// A red cross at the beam centre; nothing while a coordinate is not known (NaN).
void drawBeamCentre(QPainter& painter, const ViewGeometry& geometry, double x, double y);

}  // namespace render
