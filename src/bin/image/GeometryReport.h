// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "geometry": diffraction geometry from an image's header.
#pragma once

#include "bin/image/Arguments.h"
#include "bin/image/ChosenImage.h"
#include "logic/geometry/RingAdvice.h"

#include <iosfwd>
#include <vector>

namespace tarvik::tool {

class GeometryReport {
public:
    /// @throws MException when the image can't be read
    explicit GeometryReport(const Arguments& arguments);

    void writeText(std::ostream& out) const;
    /// One JSON object on one line.
    void writeJson(std::ostream& out) const;

private:
    /// What is known of one pixel.
    struct Place {
        int x;
        int y;
        double distance;    // m from the beam centre, -1 when not defined
        double resolution;  // Angstrom, -1 when not defined
        int powderRadius;   // pixels, -1 when not defined
    };

    const geometry::Header& _header() const { return _chosen.image.optionalData(); }

    const ChosenImage _chosen;
    std::vector<Place> _places;
    geometry::RingAdvice _rings;
};

}  // namespace tarvik::tool
