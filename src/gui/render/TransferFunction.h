// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From a contrast to the numbers by which the shaders colour a pixel.
#pragma once

#include "gui/render/PixelKind.h"
#include "logic/records/ContrastData.h"

#include <cstddef>

namespace render {

/// Levels and scales of the colour mapping of one pixel type.
///
/// A value v above the background takes entry slope * (v - background) of the linear table; from
/// the foreground on, entry logSlope * ln(v - background) + logOffset of the logarithmic table,
/// which maps the foreground to entry 0 and the logarithmic foreground to the last one.
struct TransferFunction {
    /// Clamped to the range of the pixel type and, for integers, whole. A float background is at
    /// least the smallest normal float: it is never 0 or negative.
    double foreground = 0;
    double background = 0;
    double logForeground = 0;
    double slope = 0;
    double logSlope = 0;
    double logOffset = 0;

    /// @param linear  entries of the linear table
    /// @param logarithmic  entries of the logarithmic table, 0 for a table without one
    static TransferFunction of(const ContrastData& contrast, PixelKind kind, std::size_t linear,
                               std::size_t logarithmic);
};

}  // namespace render
