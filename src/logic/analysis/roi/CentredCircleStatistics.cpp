// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The powder plot, written once over all pixel types.
#include "logic/analysis/roi/CentredCircleStatistics.h"

#include "imagelib/image/BinaryDispatcher.h"
#include "logic/analysis/roi/PixelReader.h"
#include "logic/analysis/roi/RingTable.h"

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

/// Sums over the ring in which each pixel counts by its part.
struct RingSums {
    double integral = 0;
    double squares = 0;
    double weight = 0;
    Extremes extremes;
    void add(double value, double part)
    {
        integral += value * part;
        squares += value * value * part;
        weight += part;
        extremes.add(value);
    }
};

struct CurvePoint {
    double value = 0;
    double length = 0;
};

}  // namespace

template <class L, class R>
RoiStatistics ComputeCentredCircleStatistics::operator()(const MImage& image,
                                                         const MImage& mask) const
{
    const StatisticsData& selection = *_selection;
    RoiStatistics result;
    if (!selection.centredCircleDefined())
        return result;
    result.area = double(selection.outerRadius) * selection.outerRadius * Pi;
    startCurve(result, selection, image);

    const auto table = RingTable::of({selection.powderX, selection.powderY, selection.innerRadius,
                                      selection.outerRadius, image.width(), image.height()});
    const L* pixels = image.pixels<L>();
    const R* marks = mask.pixels<R>();
    RingSums sums;
    for (const auto& [begin, length] : table->runs())
        for (std::size_t i = begin; i < std::size_t(begin) + length; ++i)
            if (maskrule::good(marks[i]))
                sums.add(static_cast<double>(pixels[i]), 1.0);
    for (const auto& [position, weight] : table->rim())
        if (maskrule::good(marks[position]))
            sums.add(static_cast<double>(pixels[position]), weight);
    std::vector<CurvePoint> points(result.curve.size());
    for (const auto& [position, point, section] : table->crossings()) {
        if (!maskrule::good(marks[position]))
            continue;
        points[point].value += static_cast<double>(pixels[position]) * section;
        points[point].length += section;
    }

    result.integral = sums.integral;
    result.minimum = sums.extremes.minimum;
    result.maximum = sums.extremes.maximum;
    if (sums.weight != 0) {
        result.mean = sums.integral / sums.weight;
        result.sigma = deviation(sums.squares, sums.weight, result.mean);
    }
    for (std::size_t i = 0; i < points.size(); ++i)
        if (points[i].length != 0)
            result.curve[i][1] = points[i].value / points[i].length;
    if (selection.innerRadius == 0 && !result.curve.empty()) {
        const PixelReader<L, R> reader(image, mask);
        const int x = static_cast<int>(selection.powderX);
        const int y = static_cast<int>(selection.powderY);
        result.curve.front() = {0.0, static_cast<double>(reader.value(x, y)),
                                static_cast<double>(reader.mask(x, y, R(0)))};
    }
    return result;
}

RoiStatistics ComputeCentredCircleStatistics::compute(const MImage& image, const MImage& mask) const
{
    return morvend::datatypes::BinaryDispatcher<const ComputeCentredCircleStatistics&, const MImage,
                                                const MImage, RoiStatistics>::Go(image, mask,
                                                                                 *this);
}
