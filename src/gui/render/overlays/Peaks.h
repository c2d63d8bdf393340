// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The marks of intensity maxima.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"
#include "logic/analysis/peaks/ImagePeaks.h"
#include "logic/records/PeakData.h"

class QPainter;

namespace render {

/// Blue crosses on the strongest peaks, as many as requested, and larger green ones on those that
/// are highlighted.
void drawPeaks(QPainter& painter, const ViewGeometry& geometry, const PeakData& selection,
               const ImagePeaks& peaks);

}  // namespace render
