// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A mark on one pixel of an overlay.
#pragma once

#include "imagelib/display/MDrawingPrimitive.h"

namespace morvend::imglib {

/// Marks a pixel, in image coordinates.
class MDrawingPixel : public MDrawingPrimitive {
public:
    MDrawingPixel(double x, double y, std::uint8_t red = 255, std::uint8_t green = 255,
                  std::uint8_t blue = 255, std::uint8_t alpha = 255)
        : MDrawingPrimitive(red, green, blue, alpha)
        , _x(x)
        , _y(y)
    {}

    int type() const override { return PIXEL; }
    std::unique_ptr<MDrawingPrimitive> clone() const override
    {
        return std::make_unique<MDrawingPixel>(*this);
    }

    double x() const { return _x; }
    double y() const { return _y; }

private:
    double _x;
    double _y;
};

}  // namespace morvend::imglib
