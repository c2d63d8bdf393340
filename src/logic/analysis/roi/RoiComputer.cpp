// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The choice of the computation and the titles of its curves.
#include "logic/analysis/roi/RoiComputer.h"

#include "logic/analysis/roi/RegionFunctor.h"
#include "logic/support/Console.h"

#include <cmath>
#include <string>

using morvend::MBadParameterException;

namespace {

void checkSize(const StatisticsData& region)
{
    for (const int each : {region.beginX, region.beginY, region.endX, region.endY, region.circleX,
                           region.circleY, region.radius, region.innerRadius, region.outerRadius})
        if (each > RoiComputer::MostPixels || each < -RoiComputer::MostPixels)
            throw MBadParameterException(
                "The region of interest is too large: " + std::to_string(each) + " pixels");
    for (const double each : {region.powderX, region.powderY})
        if (std::isinf(each) || std::abs(each) > RoiComputer::MostPixels)
            throw MBadParameterException("The centre of the region of interest is out of range");
}

}  // namespace

void RoiComputer::check() const
{
    if (_image->width() != _mask->width() || _image->height() != _mask->height())
        throw MBadParameterException("The mask of a region of interest has another size than its "
                                     "image");
    checkSize(_selection);
}

RoiStatistics RoiComputer::compute() const
{
    RoiStatistics result;
    if (!_image || !_mask || _image->empty() || _mask->empty() || !_selection.defined)
        return result;
    check();
    switch (_selection.roiType) {
    case StatisticsData::Line:
        result = ComputeLineStatistics(_selection).compute(*_image, *_mask);
        result.curveLabels = {"Length/Pixels", "Intensity"};
        break;
    case StatisticsData::Box:
        result = ComputeBoxStatistics(_selection, _stop).compute(*_image, *_mask);
        result.curveLabels = {"X Pixel", "X Projection"};
        result.secondCurveLabels = {"Y Pixel", "Y Projection"};
        break;
    case StatisticsData::Circle:
        result = ComputeCircleStatistics(_selection, _stop).compute(*_image, *_mask);
        result.curveLabels = {"Length/Pixels", "Intensity"};
        break;
    case StatisticsData::CentredCircle:
        result = ComputeCentredCircleStatistics(_selection, _stop).compute(*_image, *_mask);
        break;
    default:
        break;
    }
    return result;
}

RoiStatistics RoiComputer::computeOrWarn() const
{
    try {
        return compute();
    } catch (const MBadParameterException& error) {
        console::warn(std::string("WARNING: ") + error.what() + '\n');
        return {};
    }
}
