// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Typed access to image and mask for regions that may leave the image.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/image/MaskBits.h"

#include <cstddef>

namespace roi {

/// Reads pixels of type L under a mask of type R. Outside the image a pixel is 0 and excluded.
/// Both images must outlive the reader.
template <class L, class R>
class PixelReader {
public:
    PixelReader(const morvend::imglib::MImage& image, const morvend::imglib::MImage& mask)
        : _pixels(image.pixels<L>())
        , _mask(mask.pixels<R>())
        , _width(image.width())
        , _height(image.height())
    {}

    bool inside(int x, int y) const { return x >= 0 && y >= 0 && x < _width && y < _height; }
    bool good(int x, int y) const { return inside(x, y) && maskrule::good(_mask[index(x, y)]); }
    L value(int x, int y) const { return inside(x, y) ? _pixels[index(x, y)] : L(0); }
    R mask(int x, int y, R fallback) const { return inside(x, y) ? _mask[index(x, y)] : fallback; }
    /// True if the mask is exactly zero. Stricter than good(): bits above the fifth count too.
    bool unmarked(int x, int y) const { return inside(x, y) && _mask[index(x, y)] == R(0); }

    const L* row(int y) const { return _pixels + index(0, y); }
    const R* maskRow(int y) const { return _mask + index(0, y); }
    int width() const { return _width; }
    int height() const { return _height; }

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) +
               static_cast<std::size_t>(x);
    }
    const L* _pixels;
    const R* _mask;
    int _width;
    int _height;
};

}  // namespace roi
