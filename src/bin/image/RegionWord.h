// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Regions of interest on the command line.
#pragma once

#include "logic/records/StatisticsData.h"

#include <string>

namespace tarvik::tool {

/// The region that an option describes: "x0,y0,x1,y1" for lines and boxes, "cx,cy,r,theta" with
/// theta in degrees for circles, "cx,cy,inner,outer" for centred circles.
/// @throws UsageError
StatisticsData regionOf(StatisticsData::RoiType type, const std::string& option,
                        const std::string& text);

}  // namespace tarvik::tool
