// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The line of the reference, with its search for reflections.
#include "tests/logic/analysis/roi/ReferenceRoi.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>

namespace reference {

namespace {

struct ListEntry {
    int x, y;
    double value;
};

/// Rounding alone makes a radicand slightly negative, wrapped squares much.
double root(double radicand, double mean)
{
    return radicand < 0 && radicand >= -1e-9 * mean * mean ? 0 : std::sqrt(radicand);
}

/// Components by flood fill over the neighbour pairs that the labelling knows: left, upper left,
/// upper and their opposites.
std::map<std::pair<int, int>, int> components(const std::vector<std::pair<int, int>>& set)
{
    std::map<std::pair<int, int>, int> label;
    for (const auto& each : set)
        label[each] = 0;
    int next = 0;
    std::function<void(int, int, int)> fill = [&](int x, int y, int mark) {
        const auto found = label.find({x, y});
        if (found == label.end() || found->second)
            return;
        found->second = mark;
        const int steps[6][2] = {{-1, 0}, {-1, -1}, {0, -1}, {1, 0}, {1, 1}, {0, 1}};
        for (const auto& step : steps)
            fill(x + step[0], y + step[1], mark);
    };
    for (const auto& [x, y] : set)
        if (!label[{x, y}])
            fill(x, y, ++next);
    return label;
}

std::string distance(const Pixels& pixels, const ListEntry& a, const ListEntry& b)
{
    const auto& header = pixels.image.optionalData();
    std::ostringstream text;
    text.precision(3);
    if (header.beam_center_x() && header.beam_center_y() && header.detector_distance() &&
        header.x_pixel_size() && header.y_pixel_size() && header.wavelength()) {
        const double d = *header.detector_distance();
        const double ax = (a.x - double(*header.beam_center_x())) * double(*header.x_pixel_size());
        const double ay = (a.y - double(*header.beam_center_y())) * double(*header.y_pixel_size());
        const double bx = (b.x - double(*header.beam_center_x())) * double(*header.x_pixel_size());
        const double by = (b.y - double(*header.beam_center_y())) * double(*header.y_pixel_size());
        const double cosine = (ax * bx + ay * by + d * d) /
                              std::sqrt((ax * ax + ay * ay + d * d) * (bx * bx + by * by + d * d));
        text << *header.wavelength() / std::sqrt(2 * (1 - cosine)) << " \xE2\x84\xAB";
    } else {
        text << std::sqrt(std::pow(a.x - b.x, 2) + std::pow(a.y - b.y, 2)) << " px";
    }
    return text.str();
}

void reflections(RoiStatistics& result, const Pixels& pixels, const StatisticsData& s,
                 const std::vector<ListEntry>& list)
{
    double m = result.mean;
    double sigma = result.sigma;
    for (int pass = 0; pass < 3; ++pass) {
        double sum = 0, squares = 0;
        int n = 0;
        for (const ListEntry& each : list)
            if (!(each.value > m + 3 * sigma) && !(each.value < m - 3 * sigma)) {
                sum += each.value;
                squares += each.value * each.value;
                ++n;
            }
        if (n == 0)
            break;
        m = sum / n;
        sigma = root(squares / n - m * m, m);
    }
    const double t = m + 3 * sigma;
    std::vector<std::pair<int, int>> set;
    for (int y = std::min(s.beginY, s.endY) - 10; y < std::max(s.beginY, s.endY) + 10; ++y)
        for (int x = std::min(s.beginX, s.endX) - 10; x < std::max(s.beginX, s.endX) + 10; ++x)
            if (pixels.maskValue(x, y, 1) == 0 && pixels.value(x, y) > t)
                set.emplace_back(x, y);
    const auto label = components(set);
    std::vector<int> labels;
    for (const ListEntry& each : list) {
        const auto found = label.find({each.x, each.y});
        labels.push_back(found == label.end() ? 0 : found->second);
    }
    std::vector<ListEntry> found;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (labels[i] < 1)
            continue;
        ListEntry best = list[i];
        for (std::size_t j = i + 1; j < list.size(); ++j)
            if (labels[j] == labels[i]) {
                labels[j] = 0;
                if (list[j].value > std::trunc(best.value))
                    best = list[j];
            }
        found.push_back(best);
    }
    const auto position = [&](const ListEntry& each) {
        return std::sqrt(std::pow(each.x - list[0].x, 2) + std::pow(each.y - list[0].y, 2));
    };
    for (std::size_t i = 0; i + 1 < found.size(); ++i) {
        result.reflectionPositions.push_back(position(found[i]));
        result.reflectionPixels.push_back({found[i].x, found[i].y});
        result.lineSpotsString.push_back(distance(pixels, found[i], found[i + 1]));
    }
    if (!found.empty())
        result.reflectionPositions.push_back(position(found.back()));
}

struct Running {
    double integral = 0, squares = 0, weight = 0, minimum = 0, maximum = 0;
    bool any = false;
    void add(double value, double part)
    {
        integral += value * part;
        squares += value * value * part;
        weight += part;
        minimum = any ? std::min(minimum, value) : value;
        maximum = any ? std::max(maximum, value) : value;
        any = true;
    }
    void store(RoiStatistics& result) const
    {
        result.integral = integral;
        result.minimum = minimum;
        result.maximum = maximum;
        if (weight != 0) {
            result.mean = integral / weight;
            result.sigma = root(squares / weight - result.mean * result.mean, result.mean);
        }
    }
};

void straightLine(RoiStatistics& result, const Pixels& p, const StatisticsData& s,
                  std::vector<ListEntry>& list)
{
    const int n = std::abs(s.endX - s.beginX) + std::abs(s.endY - s.beginY);
    const int dx = (s.endX > s.beginX) - (s.endX < s.beginX);
    const int dy = (s.endY > s.beginY) - (s.endY < s.beginY);
    result.length = n;
    Running sums;
    double before = 0, maskBefore = 0;
    for (int i = 0; i <= n; ++i) {
        const int x = s.beginX + i * dx, y = s.beginY + i * dy;
        const double value = p.value(x, y), mask = p.maskValue(x, y, 1);
        if (i == 0) {
            result.curve.push_back({0, value, mask});
        } else {
            result.curve.push_back({i - 0.5, before, maskBefore});
            result.curve.push_back({i - 0.5, value, mask});
        }
        if (i == n)
            result.curve.push_back({result.length, value, mask});
        before = value;
        maskBefore = mask;
        if (p.good(x, y))
            sums.add(value, i == 0 || i == n ? 0.5 : 1);
        if (s.beginX <= s.endX && s.beginY <= s.endY)
            list.push_back({x, y, value});
    }
    sums.store(result);
}

void obliqueLine(RoiStatistics& result, const Pixels& p, const StatisticsData& s,
                 std::vector<ListEntry>& list)
{
    const double dx = s.endX - s.beginX, dy = s.endY - s.beginY, slope = dy / dx;
    const double stretch = std::sqrt(slope * slope + 1);
    result.length = std::abs(dx) * stretch;
    std::vector<std::pair<double, double>> points{{s.beginX + 0.5, s.beginY}};
    for (int i = std::min(s.beginX, s.endX) + 1; i <= std::max(s.beginX, s.endX); ++i)
        points.emplace_back(i, (i - s.beginX - 0.5) * slope + s.beginY + 0.5);
    for (int j = std::min(s.beginY, s.endY) + 1; j <= std::max(s.beginY, s.endY); ++j)
        points.emplace_back((j - s.beginY - 0.5) / slope + s.beginX + 0.5, j);
    points.emplace_back(s.endX + 0.5, s.endY);
    std::stable_sort(points.begin(), points.end(), [&](const auto& a, const auto& b) {
        return dx > 0 ? a.first < b.first : a.first > b.first;
    });
    std::vector<std::pair<double, double>> kept;
    for (const auto& each : points)
        if (kept.empty() || std::abs(each.first - kept.back().first) >= 0.0001 ||
            std::abs(each.second - kept.back().second) >= 0.0001)
            kept.push_back(each);
    Running sums;
    double distance = 0;
    for (std::size_t i = 1; i < kept.size(); ++i) {
        const int x = int(std::floor((kept[i - 1].first + kept[i].first) / 2));
        const int y = int(std::floor((kept[i - 1].second + kept[i].second) / 2));
        const double segment = std::abs(kept[i].first - kept[i - 1].first) * stretch;
        const double mask = p.mask.pixel<int>(x, y, -1);
        result.curve.push_back({distance, p.value(x, y), mask});
        distance += segment;
        result.curve.push_back({distance, p.value(x, y), mask});
        if (p.good(x, y)) {
            list.push_back({x, y, p.value(x, y)});
            sums.add(p.value(x, y), segment);
        }
    }
    sums.store(result);
}

}  // namespace

bool Pixels::good(int x, int y) const
{
    using namespace morvend::datatypes;
    if (x < 0 || y < 0 || x >= image.width() || y >= image.height())
        return false;
    switch (mask.type()) {
    case BOOL:
    case FLOAT:
        return maskValue(x, y, 1) == 0;
    case UINT:
        return mask.pixel<unsigned long long>(x, y, 1) % 32 == 0;
    default:
        return mask.pixel<long long>(x, y, 1) % 32 == 0;
    }
}

RoiStatistics line(const Pixels& pixels, const StatisticsData& s)
{
    RoiStatistics result;
    if (s.beginX == s.endX && s.beginY == s.endY)
        return result;
    std::vector<ListEntry> list;
    if (s.beginX == s.endX || s.beginY == s.endY)
        straightLine(result, pixels, s, list);
    else
        obliqueLine(result, pixels, s, list);
    reflections(result, pixels, s, list);
    return result;
}

}  // namespace reference
