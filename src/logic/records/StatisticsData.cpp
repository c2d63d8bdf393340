// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Equality of regions of interest.
#include "logic/records/StatisticsData.h"

#include "logic/records/NanEqual.h"

#include <cmath>

bool StatisticsData::centredCircleDefined() const
{
    return !std::isnan(powderX) && !std::isnan(powderY) && innerRadius >= 0 && outerRadius >= 0;
}

bool StatisticsData::operator==(const StatisticsData& other) const
{
    return defined == other.defined && beginX == other.beginX && beginY == other.beginY &&
           endX == other.endX && endY == other.endY && circleX == other.circleX &&
           circleY == other.circleY && radius == other.radius && innerRadius == other.innerRadius &&
           outerRadius == other.outerRadius && records::equal(theta, other.theta) &&
           records::equal(powderX, other.powderX) && records::equal(powderY, other.powderY) &&
           roiActive == other.roiActive && roiType == other.roiType;
}
