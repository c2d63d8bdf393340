// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Circles of constant resolution round the beam centre.
#pragma once

#include "gui/render/geometry/ViewGeometry.h"

#include <QRect>
#include <QSize>
#include <QString>

#include <array>
#include <vector>

class QPainter;
class TarvikService;

namespace render {

/// The rings of one view with their labels, as the service recommends them for what is visible.
/// They are requested again when their number changes, which follows the zoom, or what the header
/// says of the beam and the detector: rings stay around the beam centre wherever it is moved.
class ResolutionRings {
public:
    /// Draws the rings clipped to what the image covers.
    /// @param boundary  in screen pixels
    void draw(QPainter& painter, const ViewGeometry& geometry, const QRect& boundary,
              const TarvikService& service);

private:
    /// All that the rings depend on; NaN, unequal to itself, where the header has no value.
    struct Origin {
        int count = -1;
        QSize image;
        std::array<double, 6> geometry{};

        bool operator==(const Origin&) const = default;
    };
    static Origin _originOf(int count, const TarvikService& service);

    Origin _origin;
    double _ringCentreX = 0;
    double _ringCentreY = 0;
    std::vector<double> _ringRadii;
    std::vector<QString> _ringLabels;
};

}  // namespace render
