// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Span, bins, scales and drags of a histogram.
#include "gui/panels/ContrastDrag.h"
#include "gui/panels/FastContrastScale.h"
#include "gui/panels/HistogramModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

using namespace panels;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

ContrastData levels(double foreground, double background, bool dragUpdate = false)
{
    return {foreground, background, nullptr, dragUpdate};
}

/// One pixel of each value from 0 to 99.
std::uint32_t hundred(double value) { return value < 0 ? 0 : std::min(100U, unsigned(value) + 1); }

TEST(PlotSpan, HoldsImageAndLevelsWithRoom)
{
    struct Case {
        double minimum, maximum, foreground, background;
        Span span;
    };
    for (const Case& each :
         {Case{0, 0, 5, 0, {-10, 10}}, Case{-3, 90, 50, 5, {-13, 100}},
          Case{40, 90, 5000, 5, {0, 5000}}, Case{40, 90, 50, -70, {-70, 100}},
          Case{-90, -40, -50, -60, {-100, -30}}, Case{NaN, NaN, NaN, NaN, {-10, 10}},
          Case{-Infinity, Infinity, 1, 0, {-1e300, 1e300}}}) {
        const Span span =
            plotSpan(each.minimum, each.maximum, levels(each.foreground, each.background));
        EXPECT_DOUBLE_EQ(span.minimum, each.span.minimum) << each.minimum;
        EXPECT_DOUBLE_EQ(span.maximum, each.span.maximum) << each.maximum;
    }
}

TEST(Bins, CountTheirPixelsByTwoRules)
{
    const Bins bins = countBins({0, 100}, hundred);
    EXPECT_NEAR(bins.linearEdges[20], 100, 1e-9);
    EXPECT_NEAR(bins.logEdges[20], 100, 1e-9);
    EXPECT_DOUBLE_EQ(bins.linearEdges[3], 15);
    EXPECT_DOUBLE_EQ(std::asinh(bins.logEdges[3]), 0.15 * std::asinh(100));
    EXPECT_EQ(bins.linearCounts[3], 6U) << "from 15 to 20";
    EXPECT_EQ(bins.linearCounts[0], 6U);
    EXPECT_EQ(bins.logCounts[0], 1U) << "from 0 to 0.27: those up to 1, without those up to 0";
}

TEST(Summary, TellsThePixelsOfEachPart)
{
    const Span span{-10, 110};
    EXPECT_EQ(summaryText(span, levels(50, 9), hundred),
              QStringLiteral("<table><tr><td># Pixels \u2264 BG:  10</td></tr><tr><td>"
                             "BG &lt; # Pixels &lt; FG:  40</td></tr><tr><td>"
                             "# Pixels \u2265 FG:  50</td></tr></table>"));
    EXPECT_TRUE(summaryText(span, levels(9.2, 9), hundred).contains("FG:  0<"));
}

TEST(SpinStep, IsAPowerOfTenBesideAThousandthOfTheSpan)
{
    struct Case {
        double width, step;
    };
    for (const Case& each : {Case{20000, 10}, Case{10000, 1}, Case{1000, 1}, Case{500, 1},
                             Case{100, 1}, Case{99, 0.1}, Case{10, 0.1}, Case{3e9, 1e6}})
        EXPECT_DOUBLE_EQ(spinStep({0, each.width}, true), each.step) << each.width;
    EXPECT_EQ(spinStep({0, 20000}, false), 1);
}

/// Both axes linear from -10 to 250, a pixel for each value; or logarithmic ones.
HistogramScale scaleOf(const Span& span, bool logarithmic)
{
    return {span, countBins(span, hundred), logarithmic, logarithmic};
}

TEST(HistogramScale, MapsValuesToPixelsAndBack)
{
    const Span span{-10, 250};
    for (const bool logarithmic : {false, true}) {
        const HistogramScale scale = scaleOf(span, logarithmic);
        EXPECT_EQ(scale.pixelOf(-10), 40);
        EXPECT_EQ(scale.pixelOf(250), 300);
        EXPECT_EQ(scale.pixelOf(-1000), 40) << "never left of the axis";
        EXPECT_NEAR(scale.valueAt(300), 250, 1e-9);
        EXPECT_EQ(scale.valueAt(39), 0);
        const auto counts = countBins(span, hundred).counts(logarithmic);
        EXPECT_DOUBLE_EQ(scale.heightOf(*std::ranges::max_element(counts)), 90);
    }
    EXPECT_EQ(scaleOf(span, false).pixelOf(0.5), 51) << "halves go up";
}

TEST(Zones, EndAtTheLevels)
{
    struct Case {
        QPoint point;
        Zone zone;
    };
    for (const Case& each : {Case{{30, 50}, Zone::Background}, Case{{100, 150}, Zone::Background},
                             Case{{101, 100}, Zone::Between}, Case{{201, 100}, Zone::Between},
                             Case{{202, 100}, Zone::Foreground}, Case{{310, 100}, Zone::Foreground},
                             Case{{311, 100}, Zone::None}, Case{{29, 100}, Zone::None},
                             Case{{100, 49}, Zone::None}, Case{{100, 151}, Zone::None}})
        EXPECT_EQ(zoneAt(each.point, 200, 100), each.zone)
            << each.point.x() << ' ' << each.point.y();
    EXPECT_EQ(zoneAt({310, 100}, 400, 100), Zone::Foreground) << "a level beyond the plot";
}

TEST(Readout, NamesTheBinAtTheCursor)
{
    const Bins bins = countBins({0, 100}, hundred);
    const HistogramScale scale({0, 100}, bins, false, false);
    const auto readout = readoutAt({93, 60}, Zone::Between, bins, scale);
    ASSERT_TRUE(readout);
    EXPECT_EQ(readout->text, QStringLiteral("(20.4,6)")) << "the bin of 20 to 25";
    EXPECT_DOUBLE_EQ(readout->point.y(), 150 - 90);
    EXPECT_FALSE(readoutAt({92, 60}, Zone::None, bins, scale));
    EXPECT_FALSE(readoutAt({39, 60}, Zone::Background, bins, scale));
    EXPECT_FALSE(readoutAt({301, 60}, Zone::Foreground, bins, scale)) << "beyond the last bin";
}

/// Levels 100 and 50 at pixels 150 and 100, on a linear axis of a pixel for each value.
TEST(ContrastDrag, StopsAtBounds)
{
    struct Case {
        const char* name;
        Zone zone;
        std::vector<int> steps;
        double foreground, background;
    };
    const Span span{-10, 250};
    const HistogramScale scale = scaleOf(span, false);
    for (const Case& each :
         {Case{"foreground", Zone::Foreground, {10, 5}, 115, 50},
          Case{"foreground at the end", Zone::Foreground, {1000, -10}, 240, 50},
          Case{"foreground at the background", Zone::Foreground, {-80}, 50 + 1e-6, 50},
          Case{"and away from it", Zone::Foreground, {-80, 7}, 57, 50},
          Case{"background", Zone::Background, {-10}, 100, 40},
          Case{"background at the end", Zone::Background, {-500, 3}, 100, -7},
          Case{"background at the foreground", Zone::Background, {80}, 100, 100 - 1e-6},
          Case{"both", Zone::Between, {20, 1}, 121, 71},
          Case{"both at the right end", Zone::Between, {400, 400}, 250, 200},
          Case{"both at the left end", Zone::Between, {-400, -400}, 40, -10},
          Case{"nothing", Zone::None, {20}, 100, 50}}) {
        ContrastData contrast = levels(100, 50);
        ContrastDrag drag{each.zone, scale.pixelOf(100), scale.pixelOf(50)};
        for (const int step : each.steps)
            drag.step(step, scale, span, contrast);
        EXPECT_NEAR(contrast.foreground, each.foreground, 1e-9) << each.name;
        EXPECT_NEAR(contrast.background, each.background, 1e-9) << each.name;
        EXPECT_LT(contrast.background, contrast.foreground) << each.name;
    }
}

/// A drag counts nothing while the span stays; all other records do.
TEST(HistogramModel, CountsOnlyWhenItMust)
{
    int calls = 0;
    const CountUpTo counted = [&](double value) {
        ++calls;
        return hundred(value);
    };
    constexpr int Summary = 3;
    constexpr int All = Summary + 4 * int(BinCount);
    const auto adopt = [&](const ContrastData& contrast, HistogramModel& model) {
        calls = 0;
        model.adopt(contrast, 0, 99, 1, counted);
        return calls;
    };
    HistogramModel model;
    EXPECT_EQ(adopt(levels(50, 5, true), model), All) << "the first one";
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(adopt(levels(50 + i, 5 + i, true), model), Summary);
    EXPECT_EQ(adopt(levels(5000, 5, true), model), All) << "the span grew";
    EXPECT_EQ(adopt(levels(5000, 5, false), model), All) << "no drag";
}

TEST(FastContrastScale, StartsAtTheBackground)
{
    const FastContrastScale scale{10, 220};
    EXPECT_NEAR(scale.valueAt(0), 10, 1e-9);
    EXPECT_DOUBLE_EQ(scale.valueAt(10), std::sinh(1 + std::asinh(10)));
    for (const int pixel : {0, 1, 100, 220})
        EXPECT_EQ(scale.pixelOf(scale.valueAt(pixel)), pixel);
    EXPECT_EQ(scale.pixelOf(-5), 0);
    EXPECT_EQ(scale.pixelOf(1e300), 220);
}

TEST(IntensityUnit, IsOneUnlessAllFloatsAreSmall)
{
    struct Case {
        double minimum, maximum;
        bool floats;
        double unit;
    };
    for (const Case& each : {Case{0, 5.9e-7, true, 1e-9}, Case{-2e-7, 1e-7, true, 1e-9},
                             Case{0, 1, true, 0.01}, Case{0, 9.9, true, 0.01}, Case{0, 10, true, 1},
                             Case{-4000, 1, true, 1}, Case{0, 5, false, 1}, Case{0, 0, true, 1},
                             Case{NaN, NaN, true, 1}, Case{0, Infinity, true, 1}})
        EXPECT_DOUBLE_EQ(intensityUnit(each.minimum, each.maximum, each.floats), each.unit)
            << each.maximum;
    EXPECT_GT(intensityUnit(0, 5e-324, true), 0);
}

/// Counts of 0 to 99, and the same divided by a large number: levels, bars and drags are in the
/// same places.
TEST(SmallFloats, LookLikeTheSamePixelsInCounts)
{
    const double unit = 1e-9;
    const auto small = [&](double value) { return hundred(value / unit + 1e-6); };
    for (const bool logarithmic : {false, true}) {
        HistogramModel counts, floats;
        counts.setLogarithmic(logarithmic, true);
        floats.setLogarithmic(logarithmic, true);
        counts.adopt(levels(50, 5), 0, 99, 1, hundred);
        floats.adopt(levels(50 * unit, 5 * unit), 0, 99 * unit, unit, small);
        EXPECT_NEAR(floats.span().minimum / unit, counts.span().minimum, 1e-6);
        EXPECT_NEAR(floats.span().maximum / unit, counts.span().maximum, 1e-6);
        EXPECT_EQ(floats.bins().counts(logarithmic), counts.bins().counts(logarithmic));
        EXPECT_EQ(floats.summary(), counts.summary());
        for (std::size_t i = 0; i <= BinCount; ++i)
            EXPECT_EQ(floats.scale().pixelOf(floats.bins().edges(logarithmic)[i]),
                      counts.scale().pixelOf(counts.bins().edges(logarithmic)[i]));
        for (const auto& [zone, step] :
             {std::pair{Zone::Foreground, -20}, std::pair{Zone::Background, 500},
              std::pair{Zone::Between, 9}, std::pair{Zone::Foreground, -500}}) {
            ContrastData one = counts.contrast(), other = floats.contrast();
            ContrastDrag{zone, counts.foreground(), counts.background()}.step(step, counts.scale(),
                                                                              counts.span(), one);
            ContrastDrag{zone, floats.foreground(), floats.background()}.step(step, floats.scale(),
                                                                              floats.span(), other);
            EXPECT_NEAR(other.foreground / unit, one.foreground, 1e-6);
            EXPECT_NEAR(other.background / unit, one.background, 1e-6);
            EXPECT_LT(other.background, other.foreground);
        }
    }
    const FastContrastScale counts{10, 220}, floats{10 * unit, 220, unit};
    EXPECT_EQ(floats.pixelOf(50 * unit), counts.pixelOf(50));
    EXPECT_NEAR(floats.valueAt(30) / unit, counts.valueAt(30), 1e-6);
}

}  // namespace
