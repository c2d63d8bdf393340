// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The overlay of a scripting client.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "imagelib/display/MDrawingList.h"

class QPainter;

namespace render {

/// Draws the primitives of a list in their order: pixels as crosses through their centres.
void drawPaintList(QPainter& painter, const ViewGeometry& geometry,
                   const morvend::imglib::MDrawingList<>& list);

}  // namespace render
