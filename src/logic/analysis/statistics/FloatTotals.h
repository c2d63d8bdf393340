// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The totals of floats, with vectors.
#pragma once

#include "logic/analysis/statistics/PixelTotals.h"

/// What plainTotals() gives, but for the rounding of the sums: the values are added in a fixed
/// order, the same for every processor. 64 bytes past the last pixel are readable.
PixelTotals<float> vectorTotals(const float* pixels, const GoodPixels& good);
