// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the points of a series to the rows of a plot.
#pragma once

#include "logic/regionseries/SeriesCurve.h"

#include <cstddef>
#include <vector>

/// Rows of number, value and mask over the whole series. Images without numbers are masked, and so
/// is one of each run of missing ones. Of a curve with more points than `most` the extremes of
/// neighbours are kept.
std::vector<std::vector<double>> seriesRows(const SeriesCurve& curve,
                                            SeriesPoint::Quantity quantity, std::size_t most);
