// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The disc and its ring, written once over all pixel types.
#include "logic/analysis/roi/RegionFunctor.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/roi/CoveredArea.h"
#include "logic/analysis/roi/LineProfile.h"
#include "logic/analysis/roi/RegionSums.h"

#include <algorithm>
#include <cmath>

using morvend::imglib::MImage;
using namespace roi;

namespace {

constexpr double Pi = 3.141592653589793;
constexpr double SameCoordinate = 1e-6;

/// Sums over the ring and over the disc.
struct CircleSums {
    WeightedSums ring;
    RegionSums disc;
    double momentX = 0;
    double momentY = 0;

    void addToDisc(int x, int y, double value, double part)
    {
        disc.add(value, part);
        momentX += (x + 0.5) * value * part;
        momentY += (y + 0.5) * value * part;
    }
    void store(RoiStatistics& result) const
    {
        ring.store(result.backgroundMean, result.backgroundSigma);
        disc.store(result);
        result.centroidX = momentX;
        result.centroidY = momentY;
        if (disc.weight != 0) {
            result.intensity = disc.sum - result.backgroundMean * disc.weight;
            // The statistical error of a count; not defined for a negative sum.
            result.intensitySigma =
                std::sqrt(result.backgroundSigma * result.backgroundSigma * disc.weight + disc.sum);
        }
        if (disc.sum != 0) {  // the weight of the centroid is the intensity itself
            result.centroidX /= disc.sum;
            result.centroidY /= disc.sum;
        }
    }
};

/// The section along the diameter at an angle.
struct Section {
    double beginX;
    double beginY;
    double endX;
    double endY;
    double dx;  // from end to end, without the rounding of the coordinates
    double dy;
};

Section section(const StatisticsData& circle)
{
    const double dx = circle.radius * std::cos(circle.theta);
    const double dy = circle.radius * std::sin(circle.theta);
    const double x = circle.circleX + 0.5;
    const double y = circle.circleY + 0.5;
    return {x - dx, y - dy, x + dx, y + dy, 2 * dx, 2 * dy};
}

/// The pixel that contains a coordinate, also left of and above the image.
int pixelAt(double coordinate) { return static_cast<int>(std::floor(coordinate)); }

template <class L, class R>
void addSection(RoiStatistics& result, const PixelReader<L, R>& reader, const Section& ends)
{
    const double dx = ends.dx;
    const double dy = ends.dy;
    const bool vertical = std::abs(dx) < SameCoordinate;
    const bool horizontal = std::abs(dy) < SameCoordinate;
    if ((vertical && horizontal) || !std::isfinite(dx) || !std::isfinite(dy))
        return;
    const int beginX = pixelAt(ends.beginX);
    const int beginY = pixelAt(ends.beginY);
    const int endX = pixelAt(ends.endX);
    const int endY = pixelAt(ends.endY);
    if (vertical || horizontal) {
        result.length = vertical ? std::abs(dy) : std::abs(dx);
        const auto pixels = vertical ? straightPixels(beginX, beginY, beginX, endY)
                                     : straightPixels(beginX, beginY, endX, beginY);
        result.curve = straightCurve(readStraight(reader, pixels), result.length);
        return;
    }
    const double slope = dy / dx;
    result.length = std::abs(dx) * std::sqrt(slope * slope + 1);
    const ObliqueLine line{{ends.beginX, ends.beginX, ends.beginY},
                           {ends.endX, ends.endX, ends.endY},
                           ends.beginX,
                           ends.beginY,
                           slope,
                           beginX,
                           endX,
                           beginY,
                           endY};
    result.curve = obliqueCurve(readOblique(reader, crossedPixels(line)));
}

}  // namespace

template <>
template <class L, class R>
RoiStatistics ComputeCircleStatistics::operator()(const MImage& image, const MImage& mask) const
{
    const int radius = _selection->radius;
    const int cx = _selection->circleX;
    const int cy = _selection->circleY;
    RoiStatistics result;
    result.area = double(radius) * radius * Pi;
    if (radius == 0)
        return result;
    const PixelReader<L, R> reader(image, mask);
    const int outer = static_cast<int>(std::ceil(1.2 * radius));
    CircleSums sums;
    // Pixels outside the image are excluded: a circle far wider than the image costs no more.
    const int right = std::min(cx + outer, image.width() - 1);
    for (int x = std::max(cx - outer, 0); x <= right && !_stop.stop_requested(); ++x) {
        const double d = (x < cx ? x - cx + 1 : x - cx) - 0.5;
        const int top = static_cast<int>(std::sqrt(double(outer) * outer - d * d) + cy + 0.5);
        const int bottom = std::max(2 * cy - top, 0);
        for (int y = std::min(top, image.height() - 1); y >= bottom; --y) {
            if (!reader.good(x, y))
                continue;
            const auto value = static_cast<double>(reader.value(x, y));
            const double inDisc = coveredArea(x, y, radius, cx, cy);
            if (inDisc < 1)
                sums.ring.add(value, coveredArea(x, y, outer, cx, cy) - inDisc);
            if (inDisc != 0)
                sums.addToDisc(x, y, value, inDisc >= 1 ? 1.0 : inDisc);
        }
    }
    sums.store(result);
    addSection(result, reader, section(*_selection));
    return result;
}

template <>
RoiStatistics ComputeCircleStatistics::compute(const MImage& image, const MImage& mask) const
{
    return morvend::datatypes::BinaryDispatcher<const ComputeCircleStatistics&, const MImage,
                                                const MImage, RoiStatistics>::Go(image, mask,
                                                                                 *this);
}
