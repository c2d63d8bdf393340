// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Box and circles of the reference.
#include "tests/logic/analysis/roi/ReferenceRoi.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace reference {

namespace {

/// Rounding alone makes a radicand slightly negative, wrapped squares much.
double root(double radicand, double mean)
{
    return radicand < 0 && radicand >= -1e-9 * mean * mean ? 0 : std::sqrt(radicand);
}

double boxSquare(const Pixels& p, int x, int y)
{
    const auto type = p.image.type();
    const auto bits = p.image.typeBits();
    if (type == morvend::datatypes::FLOAT)
        return p.value(x, y) * p.value(x, y);
    const auto v = p.image.pixel<unsigned long long>(x, y, 0);
    if (bits == 64)
        return type == morvend::datatypes::UINT ? double(v * v) : double((long long)(v * v));
    if (type == morvend::datatypes::UINT && bits == 32)
        return double(std::uint32_t(v * v));
    return double(std::int32_t(std::uint32_t(v * v)));
}

struct Corner {
    int x, y;
    double d2;
};

std::array<Corner, 4> corners(int x, int y, double cx, double cy)
{
    std::array<Corner, 4> all{{{x, y, 0}, {x + 1, y, 0}, {x + 1, y + 1, 0}, {x, y + 1, 0}}};
    for (Corner& c : all)
        c.d2 = (c.x - cx) * (c.x - cx) + (c.y - cy) * (c.y - cy);
    std::stable_sort(all.begin(), all.end(),
                     [](const Corner& a, const Corner& b) { return a.d2 < b.d2; });
    return all;
}

double section(int x, int y, double cx, double cy, int r)
{
    if (r <= 0)
        return 0;
    const auto all = corners(x, y, cx, cy);
    const double r2 = double(r) * r;
    int inside = 0;
    for (const Corner& c : all)
        inside += c.d2 <= r2;
    const auto a = [&](int i) { return all[std::size_t(i)].x - cx; };
    const auto b = [&](int i) { return all[std::size_t(i)].y - cy; };
    const auto cut = [&](double side) { return std::sqrt(r2 - side * side); };
    if (inside == 1)
        return std::sqrt(std::pow(cut(b(0)) - std::abs(a(0)), 2) +
                         std::pow(cut(a(0)) - std::abs(b(0)), 2));
    if (inside == 3)
        return std::sqrt(std::pow(std::abs(a(3)) - cut(b(3)), 2) +
                         std::pow(std::abs(b(3)) - cut(a(3)), 2));
    if (inside == 2) {
        const double e = all[0].x != all[1].x
                             ? cut(a(0)) - std::abs(b(0)) + std::abs(b(1)) - cut(a(1))
                             : cut(b(0)) - cut(b(1));
        return std::sqrt(e * e + 1);
    }
    return 0;
}

void sections(RoiStatistics& result, const Pixels& p, const StatisticsData& s)
{
    const double dx = s.radius * std::cos(s.theta), dy = s.radius * std::sin(s.theta);
    const double ax = s.circleX + 0.5 - dx, ay = s.circleY + 0.5 - dy;
    const double bx = s.circleX + 0.5 + dx, by = s.circleY + 0.5 + dy;
    const bool vertical = std::abs(bx - ax) < 1e-6, horizontal = std::abs(by - ay) < 1e-6;
    if (vertical && horizontal)
        return;
    if (vertical || horizontal) {
        result.length = vertical ? std::abs(by - ay) : std::abs(bx - ax);
        const int from = int(vertical ? ay : ax), to = int(vertical ? by : bx);
        const int step = to > from ? 1 : -1, n = std::abs(to - from);
        const auto at = [&](int k) {
            const int x = vertical ? int(ax) : from + k * step;
            const int y = vertical ? from + k * step : int(ay);
            return std::pair(p.value(x, y), p.maskValue(x, y, 1));
        };
        result.curve.push_back({0, at(0).first, at(0).second});
        for (int k = 1; k <= n; ++k) {
            result.curve.push_back({k - 0.5, at(k - 1).first, at(k - 1).second});
            result.curve.push_back({k - 0.5, at(k).first, at(k).second});
        }
        result.curve.push_back({result.length, at(n).first, at(n).second});
        return;
    }
    const double slope = (by - ay) / (bx - ax), stretch = std::sqrt(slope * slope + 1);
    result.length = std::abs(bx - ax) * stretch;
    std::vector<std::pair<double, double>> points{{ax, ay}};
    for (int i = std::min(int(ax), int(bx)) + 1; i <= std::max(int(ax), int(bx)); ++i)
        points.emplace_back(i, (i - ax) * slope + ay);
    for (int j = std::min(int(ay), int(by)) + 1; j <= std::max(int(ay), int(by)); ++j)
        points.emplace_back((j - ay) / slope + ax, j);
    points.emplace_back(bx, by);
    std::stable_sort(points.begin(), points.end(), [&](const auto& l, const auto& r) {
        return bx > ax ? l.first < r.first : l.first > r.first;
    });
    std::vector<std::pair<double, double>> kept;
    for (const auto& each : points)
        if (kept.empty() || std::abs(each.first - kept.back().first) >= 0.0001 ||
            std::abs(each.second - kept.back().second) >= 0.0001)
            kept.push_back(each);
    double distance = 0;
    for (std::size_t i = 1; i < kept.size(); ++i) {
        const int x = int(std::floor((kept[i - 1].first + kept[i].first) / 2));
        const int y = int(std::floor((kept[i - 1].second + kept[i].second) / 2));
        const double mask = p.mask.pixel<int>(x, y, -1);
        result.curve.push_back({distance, p.value(x, y), mask});
        distance += std::abs(kept[i].first - kept[i - 1].first) * stretch;
        result.curve.push_back({distance, p.value(x, y), mask});
    }
}

struct Weighted {
    double sum = 0, squares = 0, weight = 0, minimum = 0, maximum = 0;
    bool any = false;
    void add(double v, double w)
    {
        sum += v * w;
        squares += v * v * w;
        weight += w;
        minimum = any ? std::min(minimum, v) : v;
        maximum = any ? std::max(maximum, v) : v;
        any = true;
    }
    double mean() const { return weight != 0 ? sum / weight : 0; }
    double sigma() const
    {
        return weight != 0 ? root(squares / weight - mean() * mean(), mean()) : 0;
    }
};

}  // namespace

double coveredArea(int x, int y, int r, int cx, int cy)
{
    const double X = x < cx ? 2 * cx - x : x, Y = y < cy ? 2 * cy - y : y;
    const double a = 2 * (X - cx), b = 2 * (Y - cy), R2 = 4.0 * r * r;
    if (a == 0 || b == 0) {
        const double side = a == 0 ? b : a;
        return side - 1 >= 2 * r ? 0 : side + 1 > 2 * r ? 0.5 : 1.0;
    }
    if ((a - 1) * (a - 1) + (b - 1) * (b - 1) >= R2)
        return 0;
    if ((a + 1) * (a + 1) + (b + 1) * (b + 1) <= R2)
        return 1;
    const bool P = (a - 1) * (a - 1) + (b + 1) * (b + 1) <= R2;
    const bool Q = (a + 1) * (a + 1) + (b - 1) * (b - 1) <= R2;
    const double u = cx - X + 0.5, v = cy - Y + 0.5;
    const double s1 = std::sqrt(R2 - (b - 1) * (b - 1)), s2 = std::sqrt(R2 - (a - 1) * (a - 1));
    const double s3 = std::sqrt(R2 - (b + 1) * (b + 1)), s4 = std::sqrt(R2 - (a + 1) * (a + 1));
    if (!P && !Q)
        return (s1 / 2 + u) * 0.5 * (s2 / 2 + v);
    if (P && !Q)
        return (s1 + s3) / 4 + u;
    if (Q && !P)
        return (s2 + s4) / 4 + v;
    return (1 - (s3 / 2 + u)) * 0.5 * (s4 / 2 + v - 1) + 1;
}

double coveredArea(int x, int y, int r, double cx, double cy)
{
    const auto all = corners(x, y, cx, cy);
    const double r2 = double(r) * r;
    int inside = 0;
    for (const Corner& c : all)
        inside += c.d2 <= r2;
    const auto a = [&](int i) { return all[std::size_t(i)].x - cx; };
    const auto b = [&](int i) { return all[std::size_t(i)].y - cy; };
    const auto cut = [&](double side) { return std::sqrt(r2 - side * side); };
    if (inside == 0 || inside == 4)
        return inside / 4;
    if (inside == 1)
        return (cut(b(0)) - std::abs(a(0))) * (cut(a(0)) - std::abs(b(0))) / 2;
    if (inside == 3)
        return (cut(b(3)) - std::abs(a(3))) * (std::abs(b(3)) - cut(a(3))) / 2 + 1;
    if (all[0].x != all[1].x)
        return (cut(a(0)) - std::abs(b(0)) + cut(a(1)) - std::abs(b(1))) / 2;
    return (cut(b(0)) - std::abs(a(0)) + cut(b(1)) - std::abs(a(1))) / 2;
}

RoiStatistics box(const Pixels& p, const StatisticsData& s)
{
    const int x0 = std::min(s.beginX, s.endX), x1 = std::max(s.beginX, s.endX);
    const int y0 = std::min(s.beginY, s.endY), y1 = std::max(s.beginY, s.endY);
    const int W = x1 - x0, H = y1 - y0;
    RoiStatistics result;
    result.area = std::abs(double(W) * H);
    for (int i = 0; i < W; ++i)
        result.curve.push_back({double(x0 + i), 0, 1});
    for (int j = 0; j < H; ++j)
        result.secondCurve.push_back({double(y0 + j), 0, 1});
    double squares = 0;
    int good = 0;
    bool first = true;
    for (int x = x0; x < x1; ++x)
        for (int y = y0; y < y1; ++y) {
            double value = 0;
            auto& column = result.curve[std::size_t(x - x0)];
            auto& row = result.secondCurve[std::size_t(y - y0)];
            if (p.good(x, y)) {
                value = p.value(x, y);
                squares += boxSquare(p, x, y);
                column[2] = row[2] = 0;
                ++good;
            }
            result.integral += value;
            column[1] += value;
            row[1] += value;
            result.minimum = first ? value : std::min(result.minimum, value);
            result.maximum = first ? value : std::max(result.maximum, value);
            first = false;
        }
    if (good) {
        result.mean = result.integral / good;
        result.sigma = root(squares / good - result.mean * result.mean, result.mean);
    }
    for (auto& point : result.curve)
        point[1] /= std::max(H, 1);
    for (auto& point : result.secondCurve)
        point[1] /= std::max(W, 1);
    return result;
}

RoiStatistics circle(const Pixels& p, const StatisticsData& s)
{
    const int R = s.radius, cx = s.circleX, cy = s.circleY;
    RoiStatistics result;
    result.area = double(R) * R * 3.141592653589793;
    if (R == 0)
        return result;
    const int T = int(std::ceil(1.2 * R));
    Weighted disc, ring;
    double momentX = 0, momentY = 0;
    for (int x = cx - T; x <= cx + T; ++x) {
        const double d = (x < cx ? x - cx + 1 : x - cx) - 0.5;
        const int yTop = int(std::sqrt(double(T) * T - d * d) + cy + 0.5);
        for (int y = yTop; y >= 2 * cy - yTop; --y) {
            if (!p.good(x, y))
                continue;
            const double v = p.value(x, y), A = coveredArea(x, y, R, cx, cy);
            if (A < 1)
                ring.add(v, coveredArea(x, y, T, cx, cy) - A);
            if (A != 0) {
                disc.add(v, std::min(A, 1.0));
                momentX += (x + 0.5) * v * A;
                momentY += (y + 0.5) * v * A;
            }
        }
    }
    result.backgroundMean = ring.mean();
    result.backgroundSigma = ring.sigma();
    result.integral = disc.sum;
    result.minimum = disc.minimum;
    result.maximum = disc.maximum;
    result.mean = disc.mean();
    result.sigma = disc.sigma();
    if (disc.weight != 0) {
        result.intensity = disc.sum - result.backgroundMean * disc.weight;
        result.intensitySigma =
            std::sqrt(std::pow(result.backgroundSigma, 2) * disc.weight + disc.sum);
    }
    result.centroidX = disc.sum != 0 ? momentX / disc.sum : momentX;
    result.centroidY = disc.sum != 0 ? momentY / disc.sum : momentY;
    sections(result, p, s);
    return result;
}

RoiStatistics centredCircle(const Pixels& p, const StatisticsData& s)
{
    RoiStatistics result;
    if (!s.centredCircleDefined())
        return result;
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
    Weighted sums;
    for (int x = int(cx) - r2; x <= int(cx) + r2; ++x) {
        const double d = (x < int(cx) ? x + 1 : x) - cx, chord = double(r2) * r2 - d * d;
        if (chord < 0)
            continue;
        const int yTop = int(std::sqrt(chord) + cy), h = yTop - int(cy);
        for (int y = yTop; h >= 0 && y >= yTop - 2 * h; --y) {
            if (!p.good(x, y))
                continue;
            const double A = coveredArea(x, y, r1, cx, cy);
            const double w = std::min(coveredArea(x, y, r2, cx, cy) - A, 1.0);
            if (A == 1 || w == 0)
                continue;
            sums.add(p.value(x, y), w);
            const auto all = corners(x, y, cx, cy);
            int r = int(std::ceil(std::sqrt(all[0].d2)));
            for (int turn = 0; turn < 2; ++turn, ++r) {
                if (double(r) * r > all[3].d2)
                    break;
                if (r < r1 || r > r2)
                    continue;
                auto& point = result.curve[std::size_t(r - r1)];
                point[1] += p.value(x, y) * section(x, y, cx, cy, r);
                point[2] += section(x, y, cx, cy, r);
            }
        }
    }
    result.integral = sums.sum;
    result.minimum = sums.minimum;
    result.maximum = sums.maximum;
    result.mean = sums.mean();
    result.sigma = sums.sigma();
    for (auto& point : result.curve)
        if (point[2] != 0)
            point = {point[0], point[1] / point[2], 0};
    if (r1 == 0 && !result.curve.empty())
        result.curve[0] = {0, p.value(int(cx), int(cy)), p.maskValue(int(cx), int(cy), 0)};
    return result;
}

RoiStatistics compute(const Pixels& pixels, const StatisticsData& s)
{
    RoiStatistics result;
    switch (s.roiType) {
    case StatisticsData::Line:
        result = line(pixels, s);
        result.curveLabels = {"Length/Pixels", "Intensity"};
        break;
    case StatisticsData::Box:
        result = box(pixels, s);
        result.curveLabels = {"X Pixel", "X Projection"};
        result.secondCurveLabels = {"Y Pixel", "Y Projection"};
        break;
    case StatisticsData::Circle:
        result = circle(pixels, s);
        result.curveLabels = {"Length/Pixels", "Intensity"};
        break;
    case StatisticsData::CentredCircle:
        result = centredCircle(pixels, s);
        break;
    default:
        break;
    }
    return result;
}

}  // namespace reference
