// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/plot/AxisTicks.h"

#include "imagelib/display/AxisScale.h"
#include "imagelib/image/MException.h"

#include <algorithm>
#include <cmath>

namespace plot {
namespace {

/// Limits this near to each other are one, and a value this near to 0 is 0.
constexpr double Same = 1e-8;

}  // namespace

std::vector<double> axisTicks(double min, double max, int n)
{
    if (!std::isfinite(min) || !std::isfinite(max))
        return {};
    if (std::abs(min - max) < Same)
        return {min};
    const auto [low, high] = std::minmax(min, max);
    const double limit = high + Same;
    double begin = 0;
    double distance = 0;
    try {
        for (int intervals = n; intervals <= n + 2; ++intervals) {
            double end = 0;
            morvend::imglib::scale_463_2(low, high, intervals, begin, end, distance);
            const double count =
                std::floor((limit - begin) / distance) - std::ceil((low - begin) / distance);
            if (count >= n)
                break;
        }
    } catch (const morvend::MBadParameterException&) {
        return {};
    }

    std::vector<double> ticks;
    // Counted, as a sum of distances would never pass a limit beside which they vanish.
    const double first = std::ceil((low - begin) / distance) * distance + begin;
    for (int i = 0; i <= 2 * (n + 2) && first + i * distance < limit; ++i) {
        const double value = first + i * distance;
        ticks.push_back(std::abs(value) < Same ? 0.0 : value);
    }
    return ticks;
}

}  // namespace plot
