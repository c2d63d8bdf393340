// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Round numbers for the axes of plots.
#pragma once

namespace morvend::imglib {

/// A range of exactly n intervals that contains [xmin, xmax] and whose interval is 1, 2 or 5 times
/// a power of ten: SCALE2 of C. R. Lewart, Algorithm 463, Communications of the ACM 16 (1973), 639.
/// @param n  at least 2
/// @param newMin,newMax  limits of the range; widened to xmin and xmax where rounding left them
/// inside
/// @param distance  the interval, above 0
/// @throws MBadParameterException if xmin is not below xmax, n is below 2 or the range is too wide
/// or too narrow for doubles
// NOLINTNEXTLINE(readability-identifier-naming): the number it was published under
void scale_463_2(double xmin, double xmax, int n, double& newMin, double& newMax, double& distance);

}  // namespace morvend::imglib
