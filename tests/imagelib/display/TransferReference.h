// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The transfer function for one pixel, written out rule by rule in the arithmetic of the shaders.
#pragma once

#include "imagelib/display/MColorTable.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>

namespace tarvik::tests {

struct Contrast {
    const char* name;
    double foreground;
    double background;
    double logForeground;
    friend std::ostream& operator<<(std::ostream& out, const Contrast& c) { return out << c.name; }
};

struct Highlight {
    int cutoff = 0;
    bool defective = false;
    bool saturated = false;
};

/// What a pixel may look like: an entry, and the ones beside it where a logarithm was rounded.
struct Expected {
    std::uint32_t color;
    std::uint32_t below;
    std::uint32_t above;
    bool accepts(std::uint32_t found) const
    {
        return found == color || found == below || found == above;
    }
};

template <class T>
T heldLevel(double level)
{
    if constexpr (std::is_integral_v<T>)
        if (std::isnan(level))
            return 0;
    if constexpr (std::is_same_v<T, int>)
        return level >= 2147483647.0 ? 2147483647 : level <= -2147483648.0 ? INT32_MIN : int(level);
    else if constexpr (std::is_same_v<T, unsigned>)
        return level >= 4294967295.0 ? 4294967295U : level <= 0.0 ? 0U : unsigned(level);
    else
        return level > 3.4028234663852886e38 ? 3.4028234663852886e38F : float(level);
}

inline std::uint32_t entry(const unsigned char* data, std::size_t index)
{
    const unsigned char* bgra = data + 4 * index;
    return std::uint32_t(bgra[3]) << 24 | std::uint32_t(bgra[2]) << 16 |
           std::uint32_t(bgra[1]) << 8 | std::uint32_t(bgra[0]);
}

/// A texture of nearest filtering, clamped at its ends.
inline std::size_t texel(float x, std::size_t size)
{
    const float place = std::floor(x * float(size));
    return std::min(std::size_t(place), size - 1);
}

template <class T>
Expected expectedColor(T i, std::uint32_t mask, const Contrast& contrast,
                       const morvend::imglib::MColorTable& table, const Highlight& highlight)
{
    const T f = heldLevel<T>(contrast.foreground);
    const T g = heldLevel<T>(contrast.logForeground);
    T b = heldLevel<T>(contrast.background);
    if (std::is_same_v<T, float> && contrast.background < 1.1754943508222875e-38)
        b = T(1.1754943508222875e-38F);
    const std::size_t N = table.linDataSize();
    const std::size_t L = table.logDataSize();
    const double df = double(f), db = double(b), dg = double(g);
    const auto slope = float(f > b ? double(N) / (df - db) : 0.0);
    const bool wide = g > b && L != 0;
    const double logSlope =
        wide && f > b && f != g ? (double(L) - 1) / std::log((dg - db) / (df - db)) : 0.0;
    const double logOffset = wide && f > b ? -std::log(df - db) * logSlope
                             : wide        ? double(L) - 1
                                           : 0.0;
    const auto same = [](std::uint32_t color) { return Expected{color, color, color}; };
    const auto linear = [&](std::size_t k) { return same(entry(table.linData(), k)); };
    const auto above = [&](T v) {  // v - background, with no overflow
        if constexpr (std::is_same_v<T, float>)
            return v - b;
        else
            return float(double(v) - db);
    };

    if (highlight.defective && (mask & 30) != 0)
        return same(table.defectiveColor());
    if ((mask & 1) != 0)
        return same(0xff000000U);
    if (highlight.saturated && i >= T(highlight.cutoff))
        return same(table.saturatedColor());
    if (i >= f) {
        if (L == 0 || !(g > f))
            return linear(texel(1.0F - 0.5F / float(N), N));
        if (i >= g)
            return same(entry(table.logData(), texel(0.99999F, L)));
        const float term = logSlope == 0.0 ? 0.0F : float(logSlope) * std::log(above(i));
        const float x = std::clamp((term + float(logOffset)) / float(L), 0.0F, 1.0F);
        const std::size_t k = texel(x, L);
        return {entry(table.logData(), k), entry(table.logData(), k > 0 ? k - 1 : 0),
                entry(table.logData(), std::min(k + 1, L - 1))};
    }
    if (i > b)
        return linear(texel(std::clamp(slope * above(i) / float(N), 0.0F, 1.0F), N));
    return linear(0);
}

}  // namespace tarvik::tests
