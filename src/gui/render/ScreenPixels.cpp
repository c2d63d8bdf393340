// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ScreenPixels.h"

#include "imagelib/image/PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace render {

namespace {

struct Fraction {
    std::int64_t numerator = 1;
    std::int64_t denominator = 1;
};

/// The nearest fraction among the convergents of a continued one; desktop scales are such
/// fractions.
Fraction fractionOf(double value, std::int64_t largestDenominator)
{
    Fraction last{1, 0};
    Fraction result{std::llround(std::floor(value)), 1};
    double rest = value - std::floor(value);
    constexpr double exact = 1e-9;
    while (rest > exact) {
        const double inverse = 1 / rest;
        const auto whole = std::llround(std::floor(inverse + exact));
        const Fraction next{whole * result.numerator + last.numerator,
                            whole * result.denominator + last.denominator};
        if (next.denominator > largestDenominator)
            break;
        last = result;
        result = next;
        rest = inverse - double(whole);
    }
    return result;
}

std::int64_t flooredQuotient(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

/// The sum of offset and half a screen pixel, less the smallest part: a whole quotient belongs to
/// the pixel before it.
std::int64_t startOf(double offset, std::int64_t step, std::int64_t divisor)
{
    constexpr double most = 1LL << 52;
    const double scaled = std::ceil(offset * double(divisor));
    return morvend::datatypes::convertPixel<long long>(std::clamp(scaled, -most, most)) + step / 2 -
           1;
}

/// The pixels of the screen along one axis that show pixels from `begin` to before `end`.
std::pair<int, int> showingAlong(std::int64_t start, std::int64_t step, std::int64_t divisor,
                                 int length, std::int64_t begin, std::int64_t end)
{
    const auto firstFrom = [&](std::int64_t pixel) {
        const std::int64_t first = -flooredQuotient(start - pixel * divisor, step);
        return static_cast<int>(std::clamp<std::int64_t>(first, 0, length));
    };
    return {firstFrom(begin), firstFrom(end)};
}

}  // namespace

ScreenPixels::ScreenPixels(QSize view, const ViewportData& viewport, double devicePixelRatio)
    : _size(qRound(view.width() * devicePixelRatio), qRound(view.height() * devicePixelRatio))
{
    // With the zoom as 2^power the scale is numerator / denominator screen pixels an image pixel,
    // and the centre of screen pixel x is at offset + (2 x + 1) * denominator / (2 * numerator).
    const std::int64_t reduction = viewport.zoom() < 1 ? std::llround(1 / viewport.zoom()) : 1;
    const std::int64_t magnification = std::max<std::int64_t>(1, std::llround(viewport.zoom()));
    const std::int64_t longest = std::max({_size.width(), _size.height(), 1});
    const Fraction ratio = fractionOf(
        devicePixelRatio,
        std::clamp<std::int64_t>((std::int64_t(1) << 20) / (longest * reduction), 1, 1000));
    const std::int64_t numerator = std::max<std::int64_t>(1, ratio.numerator) * magnification;
    const std::int64_t denominator = ratio.denominator * reduction;
    const std::int64_t common = std::gcd(numerator, denominator);
    _step = 2 * denominator / common;
    _divisor = 2 * numerator / common;
    _startX = startOf(viewport.offsetX, _step, _divisor);
    _startY = startOf(viewport.offsetY, _step, _divisor);
}

ScreenPixels ScreenPixels::ofBlocks(int side) const
{
    ScreenPixels blocks(*this);
    blocks._divisor *= side;
    return blocks;
}

int ScreenPixels::column(int x) const
{
    return morvend::datatypes::convertPixel<int>(flooredQuotient(_startX + x * _step, _divisor));
}

int ScreenPixels::row(int y) const
{
    return morvend::datatypes::convertPixel<int>(flooredQuotient(_startY + y * _step, _divisor));
}

QRect ScreenPixels::showing(const QRect& part) const
{
    const auto [left, right] = showingAlong(_startX, _step, _divisor, _size.width(), part.x(),
                                            std::int64_t(part.x()) + part.width());
    const auto [top, bottom] = showingAlong(_startY, _step, _divisor, _size.height(), part.y(),
                                            std::int64_t(part.y()) + part.height());
    return {left, top, right - left, bottom - top};
}

QPoint ScreenPixels::remainder(QPoint screen) const
{
    const auto along = [this](std::int64_t start, int pixel) {
        const std::int64_t place = start + pixel * _step;
        return int(place - flooredQuotient(place, _divisor) * _divisor);
    };
    return {along(_startX, screen.x()), along(_startY, screen.y())};
}

}  // namespace render
