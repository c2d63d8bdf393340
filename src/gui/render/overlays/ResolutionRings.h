// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Circles of constant resolution round the beam centre.
#pragma once

#include "gui/render/ViewGeometry.h"

#include <QRect>
#include <QString>

#include <vector>

class QPainter;
class TarvikService;

namespace render {

/// The rings of one view with their labels, as the service recommends them for what is visible.
/// They are asked for anew only when their number changes, which follows the zoom.
class ResolutionRings {
public:
    /// Draws the rings clipped to what the image covers.
    /// @param boundary  in screen pixels
    void draw(QPainter& painter, const ViewGeometry& geometry, const QRect& boundary,
              const TarvikService& service);

private:
    int _ringCount = -1;
    double _ringCentreX = 0;
    double _ringCentreY = 0;
    std::vector<double> _ringRadii;
    std::vector<QString> _ringLabels;
};

}  // namespace render
