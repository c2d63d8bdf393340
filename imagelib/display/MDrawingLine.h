// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A line of an overlay.
#pragma once

#include "imagelib/display/MDrawingPrimitive.h"

namespace morvend::imglib {

/// A straight line between two points, in image coordinates.
class MDrawingLine : public MDrawingPrimitive {
public:
    MDrawingLine(double xBegin, double yBegin, double xEnd, double yEnd, std::uint8_t red = 255,
                 std::uint8_t green = 255, std::uint8_t blue = 255, std::uint8_t alpha = 255)
        : MDrawingPrimitive(red, green, blue, alpha)
        , _xBegin(xBegin)
        , _yBegin(yBegin)
        , _xEnd(xEnd)
        , _yEnd(yEnd)
    {}

    int type() const override { return LINE; }
    std::unique_ptr<MDrawingPrimitive> clone() const override
    {
        return std::make_unique<MDrawingLine>(*this);
    }

    double xBegin() const { return _xBegin; }
    double yBegin() const { return _yBegin; }
    double xEnd() const { return _xEnd; }
    double yEnd() const { return _yEnd; }

private:
    double _xBegin;
    double _yBegin;
    double _xEnd;
    double _yEnd;
};

}  // namespace morvend::imglib
