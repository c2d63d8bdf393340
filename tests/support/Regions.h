// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions of interest for tests.
#pragma once

#include "logic/records/StatisticsData.h"

namespace regions {

inline StatisticsData between(int type, int beginX, int beginY, int endX, int endY)
{
    StatisticsData region;
    region.defined = true;
    region.roiActive = true;
    region.roiType = type;
    region.beginX = beginX;
    region.beginY = beginY;
    region.endX = endX;
    region.endY = endY;
    return region;
}

inline StatisticsData ofType(int type)
{
    const StatisticsData none;
    return between(type, none.beginX, none.beginY, none.endX, none.endY);
}

inline StatisticsData line(int beginX, int beginY, int endX, int endY)
{
    return between(StatisticsData::Line, beginX, beginY, endX, endY);
}

inline StatisticsData box(int beginX, int beginY, int endX, int endY)
{
    return between(StatisticsData::Box, beginX, beginY, endX, endY);
}

inline StatisticsData circle(int x, int y, int radius, double theta = 0)
{
    StatisticsData region = ofType(StatisticsData::Circle);
    region.circleX = x;
    region.circleY = y;
    region.radius = radius;
    region.theta = theta;
    return region;
}

inline StatisticsData powder(double x, double y, int inner, int outer)
{
    StatisticsData region = ofType(StatisticsData::CentredCircle);
    region.powderX = x;
    region.powderY = y;
    region.innerRadius = inner;
    region.outerRadius = outer;
    return region;
}

}  // namespace regions
