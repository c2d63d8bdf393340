// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where an axis has its ticks.
#pragma once

#include <vector>

namespace plot {

/// Round values between two limits, in ascending order: at least n, unless even n + 2 intervals
/// give fewer. Two equal limits give that one value; a limit that is not finite gives none.
/// @param n  at least 2
std::vector<double> axisTicks(double min, double max, int n);

}  // namespace plot
