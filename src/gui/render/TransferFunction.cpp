// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From a contrast to the numbers by which the shaders colour a pixel.
#include "gui/render/TransferFunction.h"

#include "imagelib/image/PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace render {

namespace {

/// A level in the range of the pixel type; NaN becomes 0.
double level(double value, PixelKind kind)
{
    switch (kind) {
    case PixelKind::Int:
        return morvend::datatypes::convertPixel<int>(value);
    case PixelKind::UInt:
        return morvend::datatypes::convertPixel<unsigned int>(value);
    case PixelKind::Float:
        break;
    }
    constexpr double most = std::numeric_limits<float>::max();
    return std::isnan(value) ? 0.0 : static_cast<float>(std::clamp(value, -most, most));
}

double lowestBackground(PixelKind kind)
{
    return kind == PixelKind::Float ? double(std::numeric_limits<float>::min())
                                    : std::numeric_limits<double>::lowest();
}

}  // namespace

TransferFunction TransferFunction::of(const ContrastData& contrast, PixelKind kind,
                                      std::size_t linear, std::size_t logarithmic)
{
    TransferFunction result;
    result.foreground = level(contrast.foreground, kind);
    result.background = std::max(level(contrast.background, kind), lowestBackground(kind));
    result.logForeground = level(contrast.logForeground(), kind);

    const double range = result.foreground - result.background;
    const double logRange = result.logForeground - result.background;
    if (range > 0)
        result.slope = double(linear) / range;
    if (logRange > 0 && logarithmic > 0) {
        const double last = double(logarithmic) - 1;
        if (range > 0) {
            result.logSlope = last / std::log(logRange / range);
            result.logOffset = -std::log(range) * result.logSlope;
        } else {
            result.logOffset = last;
        }
    }
    return result;
}

}  // namespace render
