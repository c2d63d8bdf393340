// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A text of an overlay.
#pragma once

#include "imagelib/display/MDrawingPrimitive.h"

#include <string>
#include <utility>

namespace morvend::imglib {

/// A text (UTF-8) at a point, in image coordinates.
class MDrawingString : public MDrawingPrimitive {
public:
    MDrawingString(double x, double y, std::string text, std::uint8_t red = 255,
                   std::uint8_t green = 255, std::uint8_t blue = 255, std::uint8_t alpha = 255)
        : MDrawingPrimitive(red, green, blue, alpha)
        , _x(x)
        , _y(y)
        , _text(std::move(text))
    {}

    int type() const override { return STRING; }
    std::unique_ptr<MDrawingPrimitive> clone() const override
    {
        return std::make_unique<MDrawingString>(*this);
    }

    double x() const { return _x; }
    double y() const { return _y; }
    const std::string& text() const { return _text; }

private:
    double _x;
    double _y;
    std::string _text;
};

}  // namespace morvend::imglib
