// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The powder plot from the sums of its ring.
#include "logic/analysis/roi/RegionFunctor.h"

#include "logic/analysis/roi/RingSums.h"

#include <cmath>

using morvend::imglib::MImage;
using namespace roi;

namespace {

constexpr double Pi = 3.141592653589793;
constexpr double DegreesPerRadian = 57.29577951308232;

/// Curve with its abscissa, values 0, and the titles of its axes.
void startCurve(RoiStatistics& result, const StatisticsData& ring, const MImage& image)
{
    const auto& header = image.optionalData();
    const auto& distance = header.detector_distance();
    const auto& size = header.y_pixel_size();
    const bool angles = distance && *distance > 0 && header.x_pixel_size() && size &&
                        *header.x_pixel_size() == *size;
    result.curveLabels = {angles ? "\u03b8/\u00b0" : "Radius/Pixels", "Circle Mean"};
    for (int radius = ring.innerRadius; radius <= ring.outerRadius; ++radius) {
        const double abscissa =
            angles ? double(std::atan(float(radius) * *size / *distance)) * DegreesPerRadian
                   : double(radius);
        result.curve.push_back({abscissa, 0.0, 0.0});
    }
}

void store(RoiStatistics& result, const RingSums& sums, int innerRadius)
{
    sums.pixels.store(result);
    const auto skipped = static_cast<std::size_t>(sums.firstRadius - innerRadius);
    for (std::size_t i = 0; i < sums.points.size(); ++i)
        if (sums.points[i].length != 0)
            result.curve[skipped + i][1] = sums.points[i].value / sums.points[i].length;
}

}  // namespace

template <>
RoiStatistics ComputeCentredCircleStatistics::compute(const MImage& image, const MImage& mask) const
{
    const StatisticsData& selection = *_selection;
    RoiStatistics result;
    if (!selection.centredCircleDefined())
        return result;
    result.area = double(selection.outerRadius) * selection.outerRadius * Pi;
    startCurve(result, selection, image);
    const Ring ring{selection.powderX,     selection.powderY, selection.innerRadius,
                    selection.outerRadius, image.width(),     image.height()};
    store(result, sumRing(ring, *PixelSource::of(image, mask), _stop), selection.innerRadius);
    if (selection.innerRadius == 0 && !result.curve.empty()) {
        const int x = static_cast<int>(selection.powderX);
        const int y = static_cast<int>(selection.powderY);
        result.curve.front() = {0.0, image.pixel<double>(x, y, 0), mask.pixel<double>(x, y, 0)};
    }
    return result;
}
