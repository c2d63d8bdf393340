// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Spreading, rounding and labelling of rings.
#include "logic/geometry/RingAdvice.h"

#include <algorithm>
#include <cmath>

namespace geometry {

namespace {

/// Digits that distinguish any two doubles.
constexpr double mostDigits = 17;

/// Metres from the beam centre to the farthest corner.
double farthestCorner(const Header& header, int width, int height)
{
    double farthest = 0;
    for (const int x : {0, width})
        for (const int y : {0, height})
            farthest = std::max(farthest, distance(header, x, y));
    return farthest;
}

/// The resolutions of n rings that divide the distance to the farthest corner into n + 1 equal
/// parts.
std::vector<double> spread(const Header& header, double farthest, int n)
{
    std::vector<double> resolutions;
    for (int i = 1; i <= n; ++i)
        resolutions.push_back(resolutionAt(header, i * farthest / (n + 1)));
    return resolutions;
}

/// The largest difference of a resolution to that of a neighbouring ring; 0 if there is none.
double gapAt(const std::vector<double>& resolutions, std::size_t i)
{
    const bool last = i + 1 == resolutions.size();
    if (i == 0)
        return last ? 0 : resolutions[0] - resolutions[1];
    const double before = resolutions[i - 1] - resolutions[i];
    return last ? before : std::max(before, resolutions[i] - resolutions[i + 1]);
}

double roundToDigits(double value, int digits)
{
    if (!std::isfinite(value) || !(value > 0))
        return value;  // has no digits
    const double scale = digits < 1 ? 1.0 : std::pow(10.0, digits);
    int exponent = 0;
    double mantissa = value;
    for (; mantissa >= scale; ++exponent)
        mantissa /= 10;
    for (; mantissa < scale / 10; --exponent)
        mantissa *= 10;
    return std::floor(mantissa + 0.5) * std::pow(10.0, exponent);
}

/// Radius in pixels of a resolution, by Bragg's law.
double radiusOf(const Header& header, double resolution)
{
    const double theta = std::asin(*header.wavelength() / 2.0 / resolution);
    return 2 * std::tan(2 * theta) * static_cast<double>(*header.detector_distance()) /
           (static_cast<double>(*header.x_pixel_size()) +
            static_cast<double>(*header.y_pixel_size()));
}

}  // namespace

RingAdvice adviseRings(const Header& header, int width, int height, int n)
{
    RingAdvice advice;
    if (!resolutionDefined(header))
        return advice;
    const std::vector<double> resolutions =
        spread(header, farthestCorner(header, width, height), std::min(n, RingAdvice::mostRings));
    int digits = 1;
    for (std::size_t i = 0; i < resolutions.size(); ++i) {
        const double gap = gapAt(resolutions, i);
        if (gap > 0) {
            const double wanted = std::ceil(std::log10(resolutions[i] / gap) + 1);
            if (!std::isnan(wanted))
                digits = static_cast<int>(std::clamp(wanted, 0.0, mostDigits));
        }
        const double rounded = roundToDigits(resolutions[i], digits);
        const double radius = radiusOf(header, rounded);
        if (!std::isfinite(radius) || radius < 0)
            continue;
        advice.radii.push_back(radius);
        advice.labels.push_back(QString::number(rounded, 'g', 6) + QChar(0x212B));
    }
    return advice;
}

}  // namespace geometry
