// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/overlays/BeamCentre.h"

#include "gui/render/overlays/Marks.h"

#include <QPainter>

#include <cmath>

namespace render {

void drawBeamCentre(QPainter& painter, const ViewGeometry& geometry, double x, double y)
{
    constexpr int arm = 10;
    if (std::isnan(x) || std::isnan(y))
        return;
    painter.setPen(marks::squarePen(Qt::red, 2));
    marks::drawCross(painter, geometry.screenPoint(x, y), arm, geometry.view());
}

}  // namespace render
