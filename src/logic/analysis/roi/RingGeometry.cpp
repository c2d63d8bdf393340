// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Searches along strips.
#include "logic/analysis/roi/RingGeometry.h"

#include <algorithm>
#include <cmath>

namespace roi {

namespace {

/// Difference of the distances of pixel and strip from the centre at which a circle certainly
/// passes the strip within less than a pixel: (2 b + 1) / (2 b + 1.5) at a strip of distance b.
constexpr double Steep = 1.25;

double square(double value) { return value * value; }

/// The first number in a range from which on a condition holds; the
/// search begins at a guess.
template <class Condition>
int firstWhere(int begin, int end, double guess, Condition condition)
{
    if (begin >= end)
        return begin;
    int i =
        static_cast<int>(std::clamp(std::isnan(guess) ? 0.0 : guess, double(begin), double(end)));
    while (i > begin && condition(i - 1))
        --i;
    while (i < end && !condition(i))
        ++i;
    return i;
}

}  // namespace

RingSide::RingSide(double centre, int extent, int direction)
    : _centre(centre)
    , _direction(direction)
    , _base(static_cast<int>(direction > 0 ? std::ceil(centre) : std::floor(centre)))
    , _begin(std::max(0, direction > 0 ? -_base : _base - extent))
    , _end(std::max(_begin, direction > 0 ? extent - _base : _base))
{}

double RingSide::distance(int i) const { return std::abs(border(i) - _centre); }

RingStrip::RingStrip(int number, double centre)
    : near(std::abs(number - centre))
    , far(std::abs(number + 1 - centre))
    , holdsCentre(number < centre && number + 1 > centre)
{
    if (near > far)
        std::swap(near, far);
}

StripParts::StripParts(const Ring& ring, const RingStrip& strip, const RingSide& side)
{
    const int begin = side.begin();
    const int end = side.end();
    const double start = side.distance(0);
    const auto nearKey = [&](int i) { return square(side.distance(i)) + square(strip.near); };
    const auto farKey = [&](int i) { return square(side.distance(i + 1)) + square(strip.far); };
    const auto guess = [&](double r2, double edge) { return std::sqrt(r2 - square(edge)) - start; };
    const double inner = square(ring.inner);
    const double outer = square(ring.outer);
    const double largest = std::max(inner, outer);
    hole =
        firstWhere(begin, end, guess(inner, strip.far), [&](int i) { return farKey(i) > inner; });
    fullBegin =
        firstWhere(hole, end, guess(inner, strip.near), [&](int i) { return nearKey(i) > inner; });
    fullEnd = firstWhere(fullBegin, end, guess(outer, strip.far),
                         [&](int i) { return farKey(i) > outer; });
    reach = firstWhere(hole, end, guess(largest, strip.near),
                       [&](int i) { return nearKey(i) > largest; });
    steepEnd = firstWhere(begin, end, strip.near - Steep - start,
                          [&](int i) { return side.distance(i) > strip.near - Steep; });
    flatBegin = firstWhere(begin, end, strip.near + Steep - start,
                           [&](int i) { return side.distance(i) - Steep >= strip.near; });
}

RingColumns::RingColumns(const Ring& ring)
    : _left(std::max(static_cast<int>(ring.centreX) - ring.outer, 0))
{
    const int centreColumn = static_cast<int>(ring.centreX);
    const int centreRow = static_cast<int>(ring.centreY);
    const int right = std::min(centreColumn + ring.outer, ring.width - 1);
    for (int x = _left; x <= right; ++x) {
        // The side of the pixel that is nearer to the centre decides how high the column reaches.
        const double d = (x < centreColumn ? x + 1 : x) - ring.centreX;
        const double chord = square(ring.outer) - square(d);
        const int top =
            chord >= 0 ? static_cast<int>(std::sqrt(chord) + ring.centreY) : centreRow - 1;
        const int half = top - centreRow;
        _top.push_back(top);
        _bottom.push_back(half >= 0 ? top - 2 * half : top + 1);
    }
}

}  // namespace roi
