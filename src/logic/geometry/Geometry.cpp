// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Distances on the detector and Bragg's law.
#include "logic/geometry/Geometry.h"

#include <cmath>

namespace geometry {

bool beamCentreDefined(const Header& header)
{
    return header.beam_center_x() && header.beam_center_y();
}

bool distanceDefined(const Header& header)
{
    return beamCentreDefined(header) && header.x_pixel_size() && header.y_pixel_size();
}

bool resolutionDefined(const Header& header)
{
    return distanceDefined(header) && header.detector_distance() && header.wavelength();
}

int powderRadius(const Header& header, int x, int y)
{
    if (!beamCentreDefined(header))
        return -1;
    const float dx = *header.beam_center_x() - static_cast<float>(x);
    const float dy = *header.beam_center_y() - static_cast<float>(y);
    const float radius = std::sqrt(dx * dx + dy * dy);
    // A header may hold any number, also one beyond the range of int.
    constexpr float limit = 2147483520.F;
    return static_cast<int>(radius < limit ? radius : limit);
}

double distance(const Header& header, int x, int y)
{
    if (!distanceDefined(header))
        return -1.0;
    const double dx = (x - static_cast<double>(*header.beam_center_x())) * *header.x_pixel_size();
    const double dy = (y - static_cast<double>(*header.beam_center_y())) * *header.y_pixel_size();
    return std::sqrt(dx * dx + dy * dy);
}

double resolution(const Header& header, int x, int y)
{
    if (!resolutionDefined(header))
        return -1.0;
    return resolutionAt(header, distance(header, x, y));
}

double resolutionAt(const Header& header, double distance)
{
    const double scatteringAngle =
        std::atan(distance / static_cast<double>(*header.detector_distance()));
    return *header.wavelength() / (2.0 * std::sin(scatteringAngle / 2.0));
}

}  // namespace geometry
