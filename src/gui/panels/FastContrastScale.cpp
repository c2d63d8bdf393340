// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/FastContrastScale.h"

#include <algorithm>
#include <cmath>

namespace panels {
namespace {

/// Of the asinh of values, from end to end.
constexpr double ScaleSpan = 22;

}  // namespace

double FastContrastScale::valueAt(int pixel) const
{
    return unit * std::sinh(pixel * ScaleSpan / width + std::asinh(background / unit));
}

int FastContrastScale::pixelOf(double value) const
{
    const double pixel =
        (std::asinh(value / unit) - std::asinh(background / unit)) * width / ScaleSpan;
    return std::isnan(pixel) ? 0 : int(std::lround(std::clamp(pixel, 0.0, double(width))));
}

}  // namespace panels
