// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One item of a vector overlay: the base of pixel mark, line, text and ellipse.
#pragma once

#include <cstdint>
#include <memory>

namespace morvend::imglib {

/// A coloured item of an overlay. type() tells the class, so that a reader may cast to it.
class MDrawingPrimitive {
public:
    enum Type { PIXEL = 0, LINE = 1, STRING = 2, ELLIPSE = 3 };

    virtual ~MDrawingPrimitive() = default;
    virtual int type() const = 0;
    virtual std::unique_ptr<MDrawingPrimitive> clone() const = 0;

    std::uint8_t red() const { return _red; }
    std::uint8_t green() const { return _green; }
    std::uint8_t blue() const { return _blue; }
    std::uint8_t alpha() const { return _alpha; }

protected:
    MDrawingPrimitive(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha)
        : _red(red)
        , _green(green)
        , _blue(blue)
        , _alpha(alpha)
    {}
    // Copied only as a whole object of one of the four classes.
    MDrawingPrimitive(const MDrawingPrimitive&) = default;
    MDrawingPrimitive& operator=(const MDrawingPrimitive&) = default;

private:
    std::uint8_t _red;
    std::uint8_t _green;
    std::uint8_t _blue;
    std::uint8_t _alpha;
};

}  // namespace morvend::imglib
