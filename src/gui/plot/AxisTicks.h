// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where an axis has its ticks.
#pragma once

#include <vector>

namespace plot {

/// Round values between two limits, in ascending order: at least n of them where up to n + 2
/// intervals give so many. The limit itself if both are the same; none where one is not finite.
/// @param n  at least 2
std::vector<double> axisTicks(double min, double max, int n);

}  // namespace plot
