// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Box and powder ring as plain loops over pixels, the peer of the regions.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/CoveredArea.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <algorithm>
#include <cmath>

namespace reference {

/// Image and mask, read pixel by pixel; what lies outside is bad.
struct Pixels {
    const morvend::imglib::MImage& image;
    const morvend::imglib::MImage& mask;
    double value(int x, int y) const { return image.pixel<double>(x, y, 0.0); }
    bool good(int x, int y) const { return mask.pixel<long long>(x, y, 1) % 32 == 0; }
};

/// Weighted sums of values.
struct Sums {
    double sum = 0, squares = 0, weight = 0, minimum = 0, maximum = 0;
    bool any = false;
    void add(double value, double part)
    {
        sum += value * part;
        squares += value * value * part;
        weight += part;
        minimum = any ? std::min(minimum, value) : value;
        maximum = any ? std::max(maximum, value) : value;
        any = true;
    }
    void store(RoiStatistics& result) const
    {
        result.integral = sum;
        result.minimum = minimum;
        result.maximum = maximum;
        if (weight == 0)
            return;
        result.mean = sum / weight;
        result.sigma = std::sqrt(std::max(squares / weight - result.mean * result.mean, 0.0));
    }
};

inline RoiStatistics box(const Pixels& p, const StatisticsData& s)
{
    RoiStatistics result;
    const auto [x0, x1] = std::minmax(s.beginX, s.endX);
    const auto [y0, y1] = std::minmax(s.beginY, s.endY);
    for (int x = x0; x < x1; ++x)
        result.curve.push_back({double(x), 0, 1});
    for (int y = y0; y < y1; ++y)
        result.secondCurve.push_back({double(y), 0, 1});
    Sums good, all;  // bad pixels count for the extremes alone, as zeros
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x) {
            all.add(p.good(x, y) ? p.value(x, y) : 0, 1);
            if (!p.good(x, y))
                continue;
            good.add(p.value(x, y), 1);
            auto& column = result.curve[std::size_t(x - x0)];
            auto& row = result.secondCurve[std::size_t(y - y0)];
            column = {double(x), column[1] + p.value(x, y) / (y1 - y0), 0};
            row = {double(y), row[1] + p.value(x, y) / (x1 - x0), 0};
        }
    good.store(result);
    result.minimum = all.minimum;
    result.maximum = all.maximum;
    return result;
}

inline RoiStatistics ring(const Pixels& p, const StatisticsData& s)
{
    RoiStatistics result;
    const double cx = s.powderX, cy = s.powderY;
    const int inner = s.innerRadius, outer = s.outerRadius;
    for (int radius = inner; radius <= outer; ++radius)
        result.curve.push_back({double(radius), 0, 0});
    std::vector<double> lengths(result.curve.size());
    Sums sums;
    for (int x = int(cx) - outer; x <= int(cx) + outer; ++x) {
        const double d = (x < int(cx) ? x + 1 : x) - cx, chord = double(outer) * outer - d * d;
        const int last = chord < 0 ? 0 : int(std::sqrt(chord) + cy), half = last - int(cy);
        for (int y = last; chord >= 0 && half >= 0 && y >= last - 2 * half; --y) {
            const double inside = p.good(x, y) ? coveredArea(x, y, inner, cx, cy) : 1;
            const double part = std::min(coveredArea(x, y, outer, cx, cy) - inside, 1.0);
            if (inside == 1 || part == 0)
                continue;
            sums.add(p.value(x, y), part);
            int radii[2];
            double sections[2];
            circleSection(x, y, cx, cy, radii[0], sections[0], radii[1], sections[1]);
            for (const int i : {0, 1})
                if (radii[i] >= inner && radii[i] <= outer) {
                    const auto at = std::size_t(radii[i] - inner);
                    result.curve[at][1] += p.value(x, y) * sections[i];
                    lengths[at] += sections[i];
                }
        }
    }
    sums.store(result);
    for (std::size_t i = 0; i < lengths.size(); ++i)
        if (lengths[i] != 0)
            result.curve[i][1] /= lengths[i];
    if (inner == 0)
        result.curve.at(0) = {0, p.value(int(cx), int(cy)),
                              p.mask.pixel<double>(int(cx), int(cy), 0)};
    return result;
}

}  // namespace reference
