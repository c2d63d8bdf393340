// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Box and circles of the reference.
#include "tests/logic/analysis/roi/ReferenceRoi.h"

#include "tests/logic/analysis/roi/ReferenceLine.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace reference {

namespace {

double boxSquare(const Pixels& p, int x, int y)
{
    using namespace morvend::datatypes;
    const auto bits = p.image.typeBits();
    if (p.image.type() == FLOAT)
        return p.value(x, y) * p.value(x, y);
    const auto v = p.image.pixel<unsigned long long>(x, y, 0);
    if (bits == 64)
        return p.image.type() == UINT ? double(v * v) : double((long long)(v * v));
    if (p.image.type() == UINT && bits == 32)
        return double(std::uint32_t(v * v));
    return double(std::int32_t(std::uint32_t(v * v)));
}

/// The corners of a pixel from the nearest to a centre to the farthest.
class Corners {
public:
    Corners(int x, int y, double cx, double cy)
        : _cx(cx)
        , _cy(cy)
        , _all{{{x, y}, {x + 1, y}, {x + 1, y + 1}, {x, y + 1}}}
    {
        std::stable_sort(_all.begin(), _all.end(),
                         [this](const auto& l, const auto& r) { return _square(l) < _square(r); });
    }
    double square(std::size_t i) const { return _square(_all[i]); }
    double a(std::size_t i) const { return _all[i].first - _cx; }
    double b(std::size_t i) const { return _all[i].second - _cy; }
    std::ptrdiff_t inside(double r2) const
    {
        return std::count_if(_all.begin(), _all.end(),
                             [&](const auto& c) { return _square(c) <= r2; });
    }

private:
    double _square(std::pair<int, int> c) const
    {
        return (c.first - _cx) * (c.first - _cx) + (c.second - _cy) * (c.second - _cy);
    }
    double _cx, _cy;
    std::array<std::pair<int, int>, 4> _all;
};

/// The length of a circle's chord within a pixel.
double section(const Corners& c, int r)
{
    const double r2 = double(r) * r;
    const auto cut = [&](double side) { return std::sqrt(r2 - side * side); };
    const auto hypotenuse = [](double u, double v) { return std::sqrt(u * u + v * v); };
    switch (r > 0 ? c.inside(r2) : 0) {
    case 1:
        return hypotenuse(cut(c.b(0)) - std::abs(c.a(0)), cut(c.a(0)) - std::abs(c.b(0)));
    case 3:
        return hypotenuse(std::abs(c.a(3)) - cut(c.b(3)), std::abs(c.b(3)) - cut(c.a(3)));
    case 2:
        return hypotenuse(c.a(0) != c.a(1)
                              ? cut(c.a(0)) - std::abs(c.b(0)) + std::abs(c.b(1)) - cut(c.a(1))
                              : cut(c.b(0)) - cut(c.b(1)),
                          1);
    default:
        return 0;
    }
}

double coveredArea(int x, int y, int r, double cx, double cy)
{
    const Corners c(x, y, cx, cy);
    const double r2 = double(r) * r;
    const auto cut = [&](double side) { return std::sqrt(r2 - side * side); };
    switch (c.inside(r2)) {
    case 0:
        return 0;
    case 1:
        return (cut(c.b(0)) - std::abs(c.a(0))) * (cut(c.a(0)) - std::abs(c.b(0))) / 2;
    case 2:
        return c.a(0) != c.a(1)
                   ? (cut(c.a(0)) - std::abs(c.b(0)) + cut(c.a(1)) - std::abs(c.b(1))) / 2
                   : (cut(c.b(0)) - std::abs(c.a(0)) + cut(c.b(1)) - std::abs(c.a(1))) / 2;
    case 3:
        return (cut(c.b(3)) - std::abs(c.a(3))) * (std::abs(c.b(3)) - cut(c.a(3))) / 2 + 1;
    default:
        return 1;
    }
}

/// The profile along a circle's diameter.
void diameter(RoiStatistics& result, const Pixels& p, const StatisticsData& s)
{
    const double dx = s.radius * std::cos(s.theta), dy = s.radius * std::sin(s.theta);
    const Point a(s.circleX + 0.5 - dx, s.circleY + 0.5 - dy);
    const Point b(s.circleX + 0.5 + dx, s.circleY + 0.5 + dy);
    const bool vertical = std::abs(b.first - a.first) < 1e-6;
    const bool horizontal = std::abs(b.second - a.second) < 1e-6;
    if (vertical && horizontal)
        return;
    const auto floor = [](double c) { return int(std::floor(c)); };
    const int ax = floor(a.first), ay = floor(a.second), bx = floor(b.first), by = floor(b.second);
    if (vertical || horizontal) {
        result.length = vertical ? std::abs(b.second - a.second) : std::abs(b.first - a.first);
        const int from = vertical ? ay : ax, to = vertical ? by : bx, step = to > from ? 1 : -1;
        walkStraight(result, p, std::abs(to - from), [&](int k) {
            return vertical ? std::pair(ax, from + k * step) : std::pair(from + k * step, ay);
        });
    } else {
        walkOblique(result, p, {a, b, a, {ax, ay}, {bx, by}}, [](int, int, double) {});
    }
}

void box(RoiStatistics& result, const Pixels& p, const StatisticsData& s)
{
    const auto [x0, x1] = std::minmax(s.beginX, s.endX);
    const auto [y0, y1] = std::minmax(s.beginY, s.endY);
    const int W = x1 - x0, H = y1 - y0;
    result.area = double(W) * H;
    for (int x = x0; x < x1; ++x)
        result.curve.push_back({double(x), 0, 1});
    for (int y = y0; y < y1; ++y)
        result.secondCurve.push_back({double(y), 0, 1});
    Sums all;
    double squares = 0;
    int good = 0;
    for (int x = x0; x < x1; ++x)
        for (int y = y0; y < y1; ++y) {
            auto& column = result.curve[std::size_t(x - x0)];
            auto& row = result.secondCurve[std::size_t(y - y0)];
            const double value = p.good(x, y) ? p.value(x, y) : 0;
            if (p.good(x, y)) {
                squares += boxSquare(p, x, y);
                column[2] = row[2] = 0;
                ++good;
            }
            all.add(value, 1);
            column[1] += value / H;
            row[1] += value / W;
        }
    result.integral = all.sum;
    result.minimum = all.minimum;
    result.maximum = all.maximum;
    if (good) {
        result.mean = all.sum / good;
        result.sigma = root(squares / good - result.mean * result.mean, result.mean);
    }
}

void circle(RoiStatistics& result, const Pixels& p, const StatisticsData& s)
{
    const int R = s.radius, cx = s.circleX, cy = s.circleY;
    result.area = double(R) * R * 3.141592653589793;
    if (R == 0)
        return;
    const int T = int(std::ceil(1.2 * R));
    Sums disc, ring;
    double momentX = 0, momentY = 0;
    for (int x = cx - T; x <= cx + T; ++x) {
        const double d = (x < cx ? x - cx + 1 : x - cx) - 0.5;
        const int yTop = int(std::sqrt(double(T) * T - d * d) + cy + 0.5);
        for (int y = yTop; y >= 2 * cy - yTop; --y) {
            if (!p.good(x, y))
                continue;
            const double v = p.value(x, y), A = reference::coveredArea(x, y, R, cx, cy);
            if (A < 1)
                ring.add(v, reference::coveredArea(x, y, T, cx, cy) - A);
            if (A != 0) {
                disc.add(v, std::min(A, 1.0));
                momentX += (x + 0.5) * v * A;
                momentY += (y + 0.5) * v * A;
            }
        }
    }
    disc.store(result);
    result.backgroundMean = ring.mean();
    result.backgroundSigma = ring.sigma();
    if (disc.weight != 0) {
        result.intensity = disc.sum - result.backgroundMean * disc.weight;
        result.intensitySigma =
            std::sqrt(result.backgroundSigma * result.backgroundSigma * disc.weight + disc.sum);
    }
    result.centroidX = disc.sum != 0 ? momentX / disc.sum : momentX;
    result.centroidY = disc.sum != 0 ? momentY / disc.sum : momentY;
    diameter(result, p, s);
}

void powder(RoiStatistics& result, const Pixels& p, const StatisticsData& s)
{
    if (!s.centredCircleDefined())
        return;
    const double cx = s.powderX, cy = s.powderY;
    const int r1 = s.innerRadius, r2 = s.outerRadius;
    result.area = double(r2) * r2 * 3.141592653589793;
    const auto& header = p.image.optionalData();
    const bool angles = header.detector_distance() && *header.detector_distance() > 0 &&
                        header.x_pixel_size() && header.y_pixel_size() &&
                        *header.x_pixel_size() == *header.y_pixel_size();
    result.curveLabels = {angles ? "θ/°" : "Radius/Pixels", "Circle Mean"};
    for (int r = r1; r <= r2; ++r)
        result.curve.push_back(
            {angles ? std::atan(float(r) * *header.y_pixel_size() / *header.detector_distance()) *
                          57.29577951308232
                    : double(r),
             0, 0});
    Sums sums;
    for (int x = int(cx) - r2; x <= int(cx) + r2; ++x) {
        const double d = (x < int(cx) ? x + 1 : x) - cx, chord = double(r2) * r2 - d * d;
        const int yTop = chord < 0 ? 0 : int(std::sqrt(chord) + cy), h = yTop - int(cy);
        for (int y = yTop; chord >= 0 && h >= 0 && y >= yTop - 2 * h; --y) {
            const double A = p.good(x, y) ? coveredArea(x, y, r1, cx, cy) : 1;
            const double w = std::min(coveredArea(x, y, r2, cx, cy) - A, 1.0);
            if (A == 1 || w == 0)
                continue;
            sums.add(p.value(x, y), w);
            const Corners corners(x, y, cx, cy);
            const int first = int(std::ceil(std::sqrt(corners.square(0))));
            for (int r = first; r < first + 2 && double(r) * r <= corners.square(3); ++r)
                if (r >= r1 && r <= r2) {
                    auto& point = result.curve[std::size_t(r - r1)];
                    point[1] += p.value(x, y) * section(corners, r);
                    point[2] += section(corners, r);
                }
        }
    }
    sums.store(result);
    for (auto& point : result.curve)
        if (point[2] != 0)
            point = {point[0], point[1] / point[2], 0};
    if (r1 == 0 && !result.curve.empty())
        result.curve[0] = {0, p.value(int(cx), int(cy)), p.maskValue(int(cx), int(cy), 0)};
}

}  // namespace

double coveredArea(int x, int y, int r, int cx, int cy)
{
    const double X = x < cx ? 2 * cx - x : x, Y = y < cy ? 2 * cy - y : y;
    const double a = 2 * (X - cx), b = 2 * (Y - cy), R2 = 4.0 * r * r;
    if (a == 0 || b == 0) {
        const double side = a == 0 ? b : a;
        return side - 1 >= 2 * r ? 0 : side + 1 > 2 * r ? 0.5 : 1.0;
    }
    const auto within = [&](int i, int j) { return (a + i) * (a + i) + (b + j) * (b + j) <= R2; };
    const auto cut = [&](double side) { return std::sqrt(R2 - side * side) / 2; };
    if ((a - 1) * (a - 1) + (b - 1) * (b - 1) >= R2)
        return 0;
    if (within(1, 1))
        return 1;
    const bool P = within(-1, 1), Q = within(1, -1);
    const double u = cx - X + 0.5, v = cy - Y + 0.5;
    if (!P && !Q)
        return (cut(b - 1) + u) * 0.5 * (cut(a - 1) + v);
    if (P && !Q)
        return (cut(b - 1) + cut(b + 1)) / 2 + u;
    if (Q && !P)
        return (cut(a - 1) + cut(a + 1)) / 2 + v;
    return (1 - (cut(b + 1) + u)) * 0.5 * (cut(a + 1) + v - 1) + 1;
}

bool Pixels::good(int x, int y) const
{
    using namespace morvend::datatypes;
    if (x < 0 || y < 0 || x >= image.width() || y >= image.height())
        return false;
    if (mask.type() == BOOL || mask.type() == FLOAT)
        return maskValue(x, y, 1) == 0;
    return mask.type() == UINT ? mask.pixel<unsigned long long>(x, y, 1) % 32 == 0
                               : mask.pixel<long long>(x, y, 1) % 32 == 0;
}

RoiStatistics compute(const Pixels& pixels, const StatisticsData& s)
{
    RoiStatistics result;
    if (s.roiType == StatisticsData::Line || s.roiType == StatisticsData::Circle)
        result.curveLabels = {"Length/Pixels", "Intensity"};
    switch (s.roiType) {
    case StatisticsData::Line:
        line(result, pixels, s);
        break;
    case StatisticsData::Box:
        box(result, pixels, s);
        result.curveLabels = {"X Pixel", "X Projection"};
        result.secondCurveLabels = {"Y Pixel", "Y Projection"};
        break;
    case StatisticsData::Circle:
        circle(result, pixels, s);
        break;
    case StatisticsData::CentredCircle:
        powder(result, pixels, s);
        break;
    default:
        break;
    }
    return result;
}

}  // namespace reference
