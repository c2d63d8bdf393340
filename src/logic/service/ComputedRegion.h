// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers of a region, and which region that is.
#pragma once

#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

struct ComputedRegion {
    StatisticsData region;
    RoiStatistics numbers;
};
