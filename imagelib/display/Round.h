// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Rounding to the nearest integral value.
#pragma once

#include <cmath>

namespace morvend::imglib {

/// The nearest integral value; halves go away from zero.
inline double round(double value) { return std::round(value); }

}  // namespace morvend::imglib
