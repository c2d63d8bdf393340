// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An ellipse of an overlay.
#pragma once

#include "imagelib/display/MDrawingPrimitive.h"

namespace morvend::imglib {

/// An ellipse: centre and radii in image pixels, rotation in radians.
class MDrawingEllipse : public MDrawingPrimitive {
public:
    MDrawingEllipse(double x, double y, double rx, double ry, double rotation,
                    std::uint8_t red = 255, std::uint8_t green = 255, std::uint8_t blue = 255,
                    std::uint8_t alpha = 255)
        : MDrawingPrimitive(red, green, blue, alpha)
        , _x(x)
        , _y(y)
        , _rx(rx)
        , _ry(ry)
        , _rotation(rotation)
    {}

    int type() const override { return ELLIPSE; }
    std::unique_ptr<MDrawingPrimitive> clone() const override
    {
        return std::make_unique<MDrawingEllipse>(*this);
    }

    double x() const { return _x; }
    double y() const { return _y; }
    double rx() const { return _rx; }
    double ry() const { return _ry; }
    double rotation() const { return _rotation; }

private:
    double _x;
    double _y;
    double _rx;
    double _ry;
    double _rotation;
};

}  // namespace morvend::imglib
