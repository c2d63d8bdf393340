// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A rectangle of integer pixels.
#pragma once

namespace morvend::imglib {

/// A rectangle of pixels. right() and bottom() are the first column and row beyond it, so that
/// right() - left() is the width. MRect(), all zero, stands for "no rectangle given".
class MRect {
public:
    constexpr MRect() = default;
    constexpr MRect(int left, int top, int width, int height)
        : _left(left)
        , _top(top)
        , _width(width)
        , _height(height)
    {}

    constexpr int left() const { return _left; }
    constexpr int top() const { return _top; }
    constexpr int right() const { return _left + _width; }
    constexpr int bottom() const { return _top + _height; }
    constexpr int width() const { return _width; }
    constexpr int height() const { return _height; }

    friend constexpr bool operator==(const MRect&, const MRect&) = default;

private:
    int _left = 0;
    int _top = 0;
    int _width = 0;
    int _height = 0;
};

}  // namespace morvend::imglib
