// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/display/AxisScale.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace morvend::imglib {
namespace {

/// More than the rounding of a division, less than what an eye sees.
constexpr double Tolerance = 2e-5;

/// The last multiple that is not above the limit, but for rounding.
double multipleBelow(double limit, double distance)
{
    const double exact = limit / distance;
    const double below = std::floor(exact);
    return below + 1 - exact < Tolerance ? below + 1 : below;
}

/// The first multiple that is not below the limit, but for rounding.
double multipleAbove(double limit, double distance) { return -multipleBelow(-limit, distance); }

}  // namespace

void scale_463_2(double xmin, double xmax, int n, double& newMin, double& newMax, double& distance)
{
    // The second pass of the widest round number takes twice the one before.
    static constexpr std::array Intervals{1.0, 2.0, 5.0, 10.0, 20.0};
    const double interval = (xmax - xmin) / n;
    if (!(xmin < xmax) || n < 2 || !std::isnormal(interval) ||
        !std::isnormal(xmax / interval + xmin / interval + 1e-300))
        throw MBadParameterException("Plot: there are no round numbers for an axis of this range");

    const double exponent = std::floor(std::log10(interval));
    const double power = std::pow(10.0, exponent);
    const double scaled = interval / power;
    std::size_t i = 0;
    while (i < 3 && scaled >= Intervals[i] + Tolerance)
        ++i;
    double first = 0;
    double count = 0;
    for (;; ++i) {
        distance = Intervals[i] * power;
        first = multipleBelow(xmin, distance);
        count = multipleAbove(xmax, distance) - first;
        if (count <= n || i + 1 == Intervals.size())
            break;
    }
    const double spare = std::floor((n - count) / 2);
    newMin = distance * (first - std::max(spare, 0.0));
    newMax = newMin + n * distance;
    newMin = std::min(newMin, xmin);
    newMax = std::max(newMax, xmax);
}

}  // namespace morvend::imglib
