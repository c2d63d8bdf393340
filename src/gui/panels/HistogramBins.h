// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the histogram of an image counts.
#pragma once

#include "logic/records/ContrastData.h"

#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace panels {

/// What counts as one step of intensity: 1, as for whole counts, unless all floating-point pixels
/// are below 10. Then it is the power of ten of which the largest pixel has hundreds.
/// @param minimum,maximum  of the image
double intensityUnit(double minimum, double maximum, bool floatingPixels);

/// The intensities from end to end of the plot.
struct Span {
    double minimum = 0;
    double maximum = 10;
    double unit = 1;
    bool operator==(const Span&) const = default;
};

/// All pixels from `minimum` to `maximum` with room to drag, and the levels of a contrast. At
/// least 10 units wide; finite whatever the arguments.
Span plotSpan(double minimum, double maximum, const ContrastData& contrast, double unit = 1);

constexpr std::size_t BinCount = 20;

/// Number of pixels at or below a value.
using CountUpTo = std::function<std::uint32_t(double)>;

/// Bins over a span, at even steps of the value and at even steps of the asinh of its units. They
/// count whole units; the counts of linear bins reach one further down than those of the others.
struct Bins {
    using Edges = std::array<double, BinCount + 1>;
    using Counts = std::array<std::uint32_t, BinCount>;
    Edges linearEdges{};
    Edges logEdges{};
    Counts linearCounts{};
    Counts logCounts{};

    const Edges& edges(bool logX) const { return logX ? logEdges : linearEdges; }
    const Counts& counts(bool logX) const { return logX ? logCounts : linearCounts; }
};

Bins countBins(const Span& span, const CountUpTo& countUpTo);

/// How many pixels are at or below the background, above it and below the foreground, and the rest,
/// as rich text.
QString summaryText(const Span& span, const ContrastData& contrast, const CountUpTo& countUpTo);

/// What a click into a spin box for intensities adds.
double spinStep(const Span& span, bool floatingPixels);

}  // namespace panels
