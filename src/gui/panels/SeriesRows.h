// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the points of a series to the rows of a plot.
#pragma once

#include "logic/regionseries/RegionSeries.h"

#include <cstddef>
#include <vector>

/// Rows of number, value and mask over the whole series. Images without numbers are masked, and so
/// is one of each run of missing ones. Of a curve with more rows than `most` the extremes of
/// neighbours are kept, and its ends.
/// @param points  by rising numbers
std::vector<std::vector<double>> seriesRows(const std::vector<SeriesPoint>& points,
                                            const RegionSeries::News& state,
                                            SeriesPoint::Quantity quantity, std::size_t most);
