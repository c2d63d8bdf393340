// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour tables: identity, inverses, and what makes them readable.
#include "imagelib/display/MColorTable.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <cmath>
#include <set>

namespace {

using morvend::imglib::MColorTable;
using Lab = std::array<double, 3>;

struct Named {
    const char* identifier;
    const MColorTable* (*table)();
};

class ColorTable : public testing::TestWithParam<Named> {
protected:
    const MColorTable* table = GetParam().table();
};

/// L*a*b* of an sRGB colour, after Lindbloom's formulas, with the rounded matrix of IEC 61966-2-1.
Lab lab(std::uint32_t argb)
{
    std::array<double, 3> c{};
    for (unsigned i = 0; i < 3; ++i) {
        const double v = (argb >> (16 - 8 * i) & 255) / 255.0;
        c[i] = v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    }
    const auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116.0; };
    const double x = f((0.4124 * c[0] + 0.3576 * c[1] + 0.1805 * c[2]) / 0.9505);
    const double y = f(0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2]);
    const double z = f((0.0193 * c[0] + 0.1192 * c[1] + 0.9505 * c[2]) / 1.089);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double distance(std::uint32_t left, std::uint32_t right)
{
    const Lab a = lab(left), b = lab(right);
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

std::vector<std::uint32_t> colors(const unsigned char* bgra, std::size_t size)
{
    std::vector<std::uint32_t> result;
    for (std::size_t i = 0; i < size; ++i, bgra += 4)
        result.push_back(std::uint32_t(bgra[3]) << 24 | std::uint32_t(bgra[2]) << 16 |
                         std::uint32_t(bgra[1]) << 8 | std::uint32_t(bgra[0]));
    return result;
}

std::vector<std::uint32_t> linear(const MColorTable& t)
{
    return colors(t.linData(), t.linDataSize());
}

std::vector<std::uint32_t> logarithmic(const MColorTable& t)
{
    return colors(t.logData(), t.logDataSize());
}

TEST_P(ColorTable, HasItsNameAndAnInverseThatLeadsBack)
{
    EXPECT_EQ(table, GetParam().table());
    EXPECT_EQ(table->identifier(), GetParam().identifier);
    EXPECT_FALSE(table->inverse());
    const MColorTable* inverse = table->inverseTable();
    ASSERT_NE(inverse, table);
    EXPECT_TRUE(inverse->inverse());
    EXPECT_EQ(inverse->inverseTable(), table);
    EXPECT_EQ(inverse->identifier(), table->identifier());
    EXPECT_EQ(inverse->saturatedColor(), table->saturatedColor());
    EXPECT_EQ(inverse->defectiveColor(), table->defectiveColor());
    for (const auto part : {linear, logarithmic}) {
        auto reversed = part(*inverse);
        std::reverse(reversed.begin(), reversed.end());
        EXPECT_EQ(part(*table), reversed);
    }
}

TEST_P(ColorTable, IsOpaqueSmoothAndFine)
{
    EXPECT_TRUE(std::has_single_bit(table->linDataSize()));
    EXPECT_GE(table->linDataSize(), 256U);
    for (const auto& part : {linear(*table), logarithmic(*table)}) {
        for (std::size_t i = 0; i < part.size(); ++i) {
            ASSERT_EQ(part[i] >> 24, 255U);
            ASSERT_LT(distance(part[i > 0 ? i - 1 : 0], part[i]), 2.0) << i;
        }
        const std::set<std::uint32_t> different(part.begin(), part.end());
        // Published data may hold a colour twice.
        EXPECT_GE(different.size(), part.empty() ? 0U : 254U);
    }
}

TEST_P(ColorTable, SpecialColoursStandOut)
{
    // 35 units of CIE 1976: several times the difference between named colours of a kind.
    const std::uint32_t saturated = table->saturatedColor(), defective = table->defectiveColor();
    for (const auto& part : {linear(*table), logarithmic(*table), {0xff000000U}})
        for (const std::uint32_t color : part) {
            ASSERT_GT(distance(color, saturated), 35.0) << std::hex << color;
            ASSERT_GT(distance(color, defective), 35.0) << std::hex << color;
        }
    EXPECT_GT(distance(saturated, defective), 60.0);
    EXPECT_EQ(saturated >> 24, 255U);
    EXPECT_EQ(defective >> 24, 255U);
}

INSTANTIATE_TEST_SUITE_P(
    Tables, ColorTable,
    testing::Values(Named{"High Dynamic Range", MColorTable::hdr},
                    Named{"Grey Scale", MColorTable::grey}, Named{"Heat", MColorTable::heat},
                    Named{"Rainbow", MColorTable::rainbow}, Named{"Viridis", MColorTable::viridis},
                    Named{"Cividis", MColorTable::cividis}),
    [](const auto& row) {
        return std::string(1, row.param.identifier[0]) + row.param.identifier[1];
    });

TEST(ColorTables, HighDynamicRangeIsContinuousAtTheForegroundAndNeverBlack)
{
    const MColorTable& hdr = *MColorTable::hdr();
    EXPECT_GE(hdr.logDataSize(), 256U);
    for (const auto* table : {MColorTable::grey(), MColorTable::heat(), MColorTable::rainbow(),
                              MColorTable::viridis(), MColorTable::cividis()})
        EXPECT_EQ(table->logDataSize(), 0U) << "no other table has a logarithmic part";
    EXPECT_LT(distance(linear(hdr).back(), logarithmic(hdr).front()), 2.0);
    for (const auto& part : {linear(hdr), logarithmic(hdr)})
        for (const std::uint32_t color : part)
            ASSERT_GT(distance(color, 0xff000000U), 10.0);
    // Each of the four decades has a look of its own.
    const auto log = logarithmic(hdr);
    for (std::size_t decade = 0; decade < 4; ++decade)
        EXPECT_GT(distance(log[decade * log.size() / 4], log[(decade + 1) * log.size() / 4 - 1]),
                  30.0)
            << decade;
}

TEST(ColorTables, LightnessNeverTurnsWithinAPart)
{
    // Rainbow is left out: a spectrum is lightest in the middle.
    const MColorTable &hdr = *MColorTable::hdr(), &grey = *MColorTable::grey(),
                      &heat = *MColorTable::heat();
    for (const auto& part : {linear(hdr), logarithmic(hdr), linear(grey), linear(heat),
                             linear(*MColorTable::viridis()), linear(*MColorTable::cividis())}) {
        const double sign = lab(part.back())[0] > lab(part.front())[0] ? 1 : -1;
        EXPECT_GT(sign * (lab(part.back())[0] - lab(part.front())[0]), 70.0);
        double reached = -1e9;
        for (const std::uint32_t color : part) {
            // Half a unit: the rounding of the colours to bytes.
            ASSERT_GT(sign * lab(color)[0], reached - 0.5);
            reached = std::max(reached, sign * lab(color)[0]);
        }
    }
}

}  // namespace
