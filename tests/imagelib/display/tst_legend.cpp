// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour bar and its ticks.
#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/image/MImage.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using namespace morvend;
using namespace morvend::imglib;

struct LegendCase {
    const char* name;
    double foreground;
    double background;
    const MColorTable* table;
    int height;
};

struct Bar {
    MImage image;
    std::map<int, double> ticks{{1, 1.0}};  // must not survive
};

Bar bar(const LegendCase& c)
{
    Bar result{MImage(50, c.height, 0), {{1, 1.0}}};
    MColorMap::legend(result.image, result.ticks, c.foreground, c.background, c.foreground * 1e4,
                      *c.table, "ARGB");
    return result;
}

/// Ticks are round, and stand where the colours of their intensities are.
void expectTicks(const LegendCase& c)
{
    const Bar result = bar(c);
    ASSERT_GE(result.ticks.size(), c.height < 60 ? 1U : 4U);
    int last = -1000;
    double lastValue = std::numeric_limits<double>::infinity();
    for (const auto& [row, value] : result.ticks) {
        ASSERT_GE(row, 0);
        ASSERT_LT(row, c.height);
        EXPECT_GE(row - last, 20) << "no room for the text";
        EXPECT_LT(value, lastValue);
        last = row;
        lastValue = value;
        char text[32];
        std::snprintf(text, sizeof text, "%.5e", value);
        EXPECT_EQ(std::strtod(text, nullptr), value) << "more than six figures";
        // The colour of the intensity is found within one row of its tick.
        const MImage pixel(1, 1, value);
        MImage color;
        MColorMap::rgb(color, pixel, c.foreground, c.background, c.foreground * 1e4, *c.table,
                       "ARGB", nullptr, nullptr, 0, false, false);
        int difference = 1000;
        for (int y = std::max(row - 1, 0); y <= std::min(row + 1, c.height - 1); ++y) {
            int sum = 0;
            for (int shift = 0; shift < 24; shift += 8)
                sum += std::abs(static_cast<int>(result.image.pixel(0, y, 0U) >> shift & 255) -
                                static_cast<int>(color.pixel(0, 0, 0U) >> shift & 255));
            difference = std::min(difference, sum);
        }
        EXPECT_LE(difference, 3 + 3000 / c.height) << value;
    }
}

TEST(Legend, TicksAreRoundAndStandWhereTheColoursOfTheirIntensitiesAre)
{
    for (const LegendCase& c :
         {LegendCase{"Usual", 100, 0, MColorTable::hdr(), 360},
          LegendCase{"Narrow", 1000.75, 1000.25, MColorTable::grey(), 360},
          LegendCase{"Inverse", 300, 0, MColorTable::hdr()->inverseTable(), 360}}) {
        SCOPED_TRACE(c.name);
        expectTicks(c);
    }
}

TEST(LegendBar, RunsFromTheBackgroundAtTheBottomToTheStrongestAtTheTop)
{
    const MColorTable& table = *MColorTable::hdr();
    const Bar result = bar({"", 10, 0, &table, 2048});
    const auto word = [](const unsigned char* bgra) {
        return 0xff000000U | unsigned(bgra[2]) << 16 | unsigned(bgra[1]) << 8 | unsigned(bgra[0]);
    };
    EXPECT_EQ(result.image.pixel(0, 2047, 0U), word(table.linData()));
    EXPECT_EQ(result.image.pixel(49, 1023, 0U), word(table.logData()));
    EXPECT_EQ(result.image.pixel(0, 0, 0U), word(table.logData() + 4 * 1023));
    EXPECT_EQ(result.image.type(), datatypes::INT);
}

TEST(LegendBar, WithoutARangeHasNoTicks)
{
    const double inf = std::numeric_limits<double>::infinity();
    for (const auto& [f, b] :
         {std::pair{5.0, 5.0}, {3.0, 8.0}, {inf, 0.0}, {std::nan(""), 0.0}, {1e308, -1e308}})
        for (const auto* table : {MColorTable::hdr(), MColorTable::grey()})
            EXPECT_TRUE(bar({"", f, b, table, 100}).ticks.empty()) << f << " " << b;
    EXPECT_TRUE(bar({"", 10, 0, MColorTable::hdr(), 0}).ticks.empty());
    MImage narrow(3, 3, static_cast<short>(0));
    std::map<int, double> ticks;
    EXPECT_THROW(MColorMap::legend(narrow, ticks, 1, 0, 1e4, *MColorTable::hdr(), "ARGB"),
                 MBadParameterException);
}

}  // namespace
