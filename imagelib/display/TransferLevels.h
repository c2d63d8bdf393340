// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The levels of a contrast as the transfer function takes them, for each of its three pixel types.
#pragma once

#include "imagelib/image/PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace morvend::imglib {

/// The levels as values of a display type, and the slopes that lead from intensities to table
/// entries: the shaders' uniforms, which the processor uses too. The display type is float for
/// floating images, unsigned int for unsigned ones, int for all others.
template <class T>
struct TransferLevels {
    T foreground;
    T background;
    T logForeground;
    /// Entries of the linear part per unit of intensity; 0 unless foreground > background.
    double slope;
    /// An intensity i above the foreground belongs to the entry
    /// logSlope * ln(i - background) + logOffset of the logarithmic part.
    double logSlope;
    double logOffset;
};

/// Converts a level: truncated for integers, and clamped to the type's range.
template <class T>
T displayLevel(double level)
{
    static_assert(std::is_same_v<T, int> || std::is_same_v<T, unsigned int> ||
                  std::is_same_v<T, float>);
    if constexpr (std::is_same_v<T, float>) {
        // A NaN stays NaN: nothing is above it.
        const double highest = std::numeric_limits<float>::max();
        return static_cast<float>(std::isnan(level) ? level : std::clamp(level, -highest, highest));
    } else {
        return datatypes::convertPixel<T>(level);
    }
}

/// @param linSize, logSize  entries of the two parts of the colour table
template <class T>
TransferLevels<T> transferLevels(double foreground, double background, double logForeground,
                                 std::size_t linSize, std::size_t logSize)
{
    TransferLevels<T> levels{displayLevel<T>(foreground),
                             displayLevel<T>(background),
                             displayLevel<T>(logForeground),
                             0.0,
                             0.0,
                             0.0};
    // The background of floating images stays positive: the smallest normal number and above.
    if (std::is_floating_point_v<T>)
        levels.background = std::max(levels.background, std::numeric_limits<T>::min());
    const double f = static_cast<double>(levels.foreground);
    const double b = static_cast<double>(levels.background);
    const double g = static_cast<double>(levels.logForeground);
    const double last = static_cast<double>(logSize) - 1.0;
    if (f > b)
        levels.slope = static_cast<double>(linSize) / (f - b);
    if (g > b && logSize != 0 && f > b) {
        // A range too narrow for doubles has an infinite slope and counts as empty.
        const double slope = last / std::log((g - b) / (f - b));
        levels.logSlope = std::isfinite(slope) ? slope : 0.0;
        levels.logOffset = -std::log(f - b) * levels.logSlope;
    } else if (g > b && logSize != 0) {
        levels.logOffset = last;
    }
    return levels;
}

}  // namespace morvend::imglib
