// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The line of the reference.
#include "tests/logic/analysis/roi/ReferenceLine.h"

#include <functional>
#include <map>
#include <sstream>

namespace reference {

namespace {

struct ListEntry {
    int x, y;
    double value;
};

std::string distance(const Pixels& pixels, const ListEntry& a, const ListEntry& b)
{
    const auto& header = pixels.image.optionalData();
    std::ostringstream text;
    text.precision(3);
    if (!header.beam_center_x() || !header.beam_center_y() || !header.detector_distance() ||
        !header.x_pixel_size() || !header.y_pixel_size() || !header.wavelength()) {
        text << std::sqrt(std::pow(a.x - b.x, 2) + std::pow(a.y - b.y, 2)) << " px";
        return text.str();
    }
    const double d = *header.detector_distance();
    const auto ray = [&](const ListEntry& e) {
        return Point((e.x - double(*header.beam_center_x())) * double(*header.x_pixel_size()),
                     (e.y - double(*header.beam_center_y())) * double(*header.y_pixel_size()));
    };
    const auto product = [&](const Point& l, const Point& r) {
        return l.first * r.first + l.second * r.second + d * d;
    };
    const Point ra = ray(a), rb = ray(b);
    const double cosine = product(ra, rb) / std::sqrt(product(ra, ra) * product(rb, rb));
    text << *header.wavelength() / std::sqrt(2 * (1 - cosine)) << " \xE2\x84\xAB";
    return text.str();
}

/// Values above three deviations of what is left after three passes without the strong ones.
double threshold(const RoiStatistics& result, const std::vector<ListEntry>& list)
{
    double m = result.mean, sigma = result.sigma;
    for (int pass = 0; pass < 3; ++pass) {
        Sums sums;
        for (const ListEntry& each : list)
            if (!(each.value > m + 3 * sigma) && !(each.value < m - 3 * sigma))
                sums.add(each.value, 1);
        if (!sums.any)
            break;
        m = sums.mean();
        sigma = sums.sigma();
    }
    return m + 3 * sigma;
}

/// Components around a line by flood fill over the neighbour pairs that the labelling knows: left,
/// upper left, upper and their opposites.
std::map<std::pair<int, int>, int> components(const Pixels& p, const StatisticsData& s, double t)
{
    std::map<std::pair<int, int>, int> label;
    const auto [x0, x1] = std::minmax(s.beginX, s.endX);
    const auto [y0, y1] = std::minmax(s.beginY, s.endY);
    for (int y = y0 - 10; y < y1 + 10; ++y)
        for (int x = x0 - 10; x < x1 + 10; ++x)
            if (p.maskValue(x, y, 1) == 0 && p.value(x, y) > t)
                label[{x, y}] = 0;
    const std::function<void(int, int, int)> fill = [&](int x, int y, int mark) {
        const auto found = label.find({x, y});
        if (found == label.end() || found->second)
            return;
        found->second = mark;
        for (const auto& [dx, dy] : {std::pair(-1, 0), {-1, -1}, {0, -1}, {1, 0}, {1, 1}, {0, 1}})
            fill(x + dx, y + dy, mark);
    };
    int next = 0;
    for (const auto& [place, mark] : label)
        if (!mark)
            fill(place.first, place.second, ++next);
    return label;
}

void reflections(RoiStatistics& result, const Pixels& pixels, const StatisticsData& s,
                 const std::vector<ListEntry>& list)
{
    const auto label = components(pixels, s, threshold(result, list));
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
    for (std::size_t i = 0; i < found.size(); ++i) {
        result.reflectionPositions.push_back(
            std::sqrt(std::pow(found[i].x - list[0].x, 2) + std::pow(found[i].y - list[0].y, 2)));
        if (i + 1 == found.size())
            break;
        result.reflectionPixels.push_back({found[i].x, found[i].y});
        result.lineSpotsString.push_back(distance(pixels, found[i], found[i + 1]));
    }
}

}  // namespace

void line(RoiStatistics& result, const Pixels& p, const StatisticsData& s)
{
    const int dx = s.endX - s.beginX, dy = s.endY - s.beginY;
    std::vector<ListEntry> list;
    Sums sums;
    if (dx != 0 && dy != 0) {
        const Way way{{s.beginX + 0.5, s.beginY},
                      {s.endX + 0.5, s.endY},
                      {s.beginX + 0.5, s.beginY + 0.5},
                      {s.beginX, s.beginY},
                      {s.endX, s.endY}};
        walkOblique(result, p, way, [&](int x, int y, double segment) {
            if (p.good(x, y)) {
                list.push_back({x, y, p.value(x, y)});
                sums.add(p.value(x, y), segment);
            }
        });
    } else if (dx != 0 || dy != 0) {
        const int n = std::abs(dx) + std::abs(dy);
        const auto at = [&](int k) {
            return std::pair(s.beginX + k * dx / n, s.beginY + k * dy / n);
        };
        result.length = n;
        walkStraight(result, p, n, at);
        for (int k = 0; k <= n; ++k) {
            const auto [x, y] = at(k);
            if (p.good(x, y))
                sums.add(p.value(x, y), k == 0 || k == n ? 0.5 : 1);
            if (dx >= 0 && dy >= 0)
                list.push_back({x, y, p.value(x, y)});
        }
    } else {
        return;
    }
    sums.store(result);
    reflections(result, p, s, list);
}

}  // namespace reference
