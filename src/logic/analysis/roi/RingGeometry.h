// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which pixels of a row or column a ring around a real-valued centre covers, and in which way its
// circles cross them.
#pragma once

#include <vector>

namespace roi {

/// A ring in an image.
struct Ring {
    double centreX;
    double centreY;
    int inner;
    int outer;
    int width;  // of the image
    int height;
};

/// One direction from the centre along rows or columns. Border i is before pixel i; both count
/// from the centre outwards, and the pixel that contains the centre's coordinate isn't among them.
class RingSide {
public:
    /// @param extent  pixels of the image along the side's coordinate
    /// @param direction  1 or -1
    RingSide(double centre, int extent, int direction);

    double centre() const { return _centre; }
    int direction() const { return _direction; }
    /// The pixels inside the image, the end not included.
    int begin() const { return _begin; }
    int end() const { return _end; }
    double border(int i) const { return double(_base) + _direction * double(i); }
    double distance(int i) const;
    int pixel(int i) const { return _direction > 0 ? _base + i : _base - 1 - i; }

private:
    double _centre;
    int _direction;
    int _base;
    int _begin;
    int _end;
};

/// A row or column: distances of its two edges from the centre.
struct RingStrip {
    RingStrip(int number, double centre);
    double near;
    double far;
    bool holdsCentre;  // the centre is between the edges
};

/// The pixels of a strip on one side of the centre, judged by their corners. The numbers are
/// borders between kinds of pixels, in the order of the side.
struct StripParts {
    StripParts(const Ring& ring, const RingStrip& strip, const RingSide& side);
    int hole;       // pixels before it are wholly within the inner circle
    int fullBegin;  // pixels from here up to fullEnd are wholly in the ring
    int fullEnd;
    int reach;      // pixels from here on are not touched by the ring
    int steepEnd;   // pixels before it are nearer to the centre than the strip, by a margin
    int flatBegin;  // pixels from here on are farther from it than the strip, by a margin
};

/// How far down and up each column of the outer circle reaches.
class RingColumns {
public:
    explicit RingColumns(const Ring& ring);
    int left() const { return _left; }
    /// One more than the last column.
    int right() const { return _left + static_cast<int>(_top.size()); }
    bool has(int x, int y) const
    {
        const auto column = static_cast<std::size_t>(x - _left);
        return x >= _left && column < _top.size() && y <= _top[column] && y >= _bottom[column];
    }

private:
    int _left;
    std::vector<int> _top;
    std::vector<int> _bottom;
};

}  // namespace roi
