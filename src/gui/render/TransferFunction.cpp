// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/TransferFunction.h"

#include "imagelib/display/TransferLevels.h"

namespace render {

namespace {

template <class T>
TransferFunction convert(const ContrastData& contrast, std::size_t linear, std::size_t logarithmic)
{
    const auto levels = morvend::imglib::transferLevels<T>(
        contrast.foreground, contrast.background, contrast.logForeground(), linear, logarithmic);
    return {double(levels.foreground),
            double(levels.background),
            double(levels.logForeground),
            levels.slope,
            levels.logSlope,
            levels.logOffset};
}

}  // namespace

TransferFunction TransferFunction::of(const ContrastData& contrast, PixelKind kind,
                                      std::size_t linear, std::size_t logarithmic)
{
    switch (kind) {
    case PixelKind::UInt:
        return convert<unsigned int>(contrast, linear, logarithmic);
    case PixelKind::Float:
        return convert<float>(contrast, linear, logarithmic);
    case PixelKind::Int:
        break;
    }
    return convert<int>(contrast, linear, logarithmic);
}

}  // namespace render
