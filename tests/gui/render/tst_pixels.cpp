// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every pixel on the screen has the colour that the processor's colour map gives it.
#include "imagelib/display/MColorMap.h"
#include "imagelib/display/TransferLevels.h"
#include "tests/gui/render/DrawnImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <random>

namespace {

using morvend::imglib::MColorMap;
using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

constexpr int width = 160;
constexpr int height = 96;

/// Foreground and background.
using Levels = std::pair<double, double>;

/// Values at and next to every boundary of the levels, the ends of the type, and random ones.
template <class T>
std::vector<T> interestingValues(const std::vector<Levels>& levels)
{
    std::vector<double> values{
        0,    1,     2,   -1,   -2, 5, 1000, 1e6, 65535, 2147483647.0, -2147483648.0, 4294967295.0,
        1e30, -1e30, 0.5, 1e-30};
    values.push_back(std::numeric_limits<double>::quiet_NaN());
    for (const auto& [foreground, background] : levels) {
        for (const double level : {foreground, background, foreground * 10000}) {
            for (const double step : {-1.0, 0.0, 1.0, -0.25, 0.25})
                values.push_back(level + step);
        }
    }
    std::vector<T> result;
    for (const double value : values)
        result.push_back(morvend::datatypes::convertPixel<T>(value));
    std::mt19937 random(12);
    std::uniform_real_distribution<double> exponent(0, 22);
    while (result.size() < std::size_t(width * height) / 2)
        result.push_back(morvend::datatypes::convertPixel<T>(std::exp(exponent(random))));
    for (T value = 0; result.size() < std::size_t(width * height); ++value)
        result.push_back(value);
    return result;
}

/// Each value stands in a row of pixels without mask bits and with each of them.
template <class T>
MImage testImage(const std::vector<Levels>& levels)
{
    const std::vector<T> values = interestingValues<T>(levels);
    MImage image(width, height, T(0));
    MImage mask(width, height, 0U);
    auto* pixels = static_cast<T*>(image.data());
    auto* bits = static_cast<unsigned int*>(mask.data());
    for (std::size_t i = 0; i < values.size(); ++i) {
        pixels[i] = values[i];
        const std::size_t row = i / width;
        // Rows without mask bits first, then one row for each bit, and for bits together.
        const unsigned int patterns[] = {0, 0, 0, 0, 0, 0, 1, 2, 4, 8, 16, 32, 3, 31};
        bits[i] = patterns[row % std::size(patterns)];
    }
    image.optionalData().set_pixel_mask(mask);
    image.optionalData().set_saturation_value(500000);
    return image;
}

struct Differences {
    int beyond = 0;      ///< wrong colours
    int neighbours = 0;  ///< next entry of the logarithmic table
    std::string first;
};

/// Compares the view's picture with the colour map. In the logarithmic part the graphics card's
/// logarithm may lead to the next entry of the table.
Differences compare(const QImage& picture, const MImage& image, const ContrastData& contrast,
                    bool highlight)
{
    MImage expected;
    MColorMap::rgb(
        expected, image, contrast.foreground, contrast.background, contrast.logForeground(),
        *contrast.colorTable, "ARGB", &*image.optionalData().pixel_mask(), nullptr,
        highlight ? *image.optionalData().saturation_value() : std::numeric_limits<int>::max(),
        highlight, highlight);
    std::map<QRgb, std::vector<QRgb>> next;
    const MColorTable& table = *contrast.colorTable;
    std::vector<QRgb> entries(table.logDataSize());
    if (!entries.empty())
        std::memcpy(entries.data(), table.logData(), entries.size() * 4);
    for (std::size_t i = 0; i + 1 < entries.size(); ++i) {
        next[entries[i]].push_back(entries[i + 1]);
        next[entries[i + 1]].push_back(entries[i]);
    }

    Differences result;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto wanted = expected.pixel<unsigned int>(x, y, 0);
            const QRgb shown = picture.pixel(x, y);
            if (shown == wanted)
                continue;
            const auto& near = next[wanted];
            if (std::find(near.begin(), near.end(), shown) != near.end()) {
                ++result.neighbours;
                continue;
            }
            if (result.beyond++ == 0) {
                result.first = QString("(%1,%2) value %3 mask %4: shown %5, wanted %6")
                                   .arg(x)
                                   .arg(y)
                                   .arg(image.pixel<double>(x, y, 0))
                                   .arg(image.optionalData().pixel_mask()->pixel<int>(x, y, 0))
                                   .arg(shown, 8, 16)
                                   .arg(wanted, 8, 16)
                                   .toStdString();
            }
        }
    }
    return result;
}

template <class T>
class PixelColours : public testing::Test {};

using ShownTypes = testing::Types<int, unsigned int, float, unsigned short, short, double, char,
                                  signed char, unsigned char, long long, unsigned long long>;
TYPED_TEST_SUITE(PixelColours, ShownTypes);

/// All tables, their inverses, levels in all positions to each other, with and without
/// highlighting.
TYPED_TEST(PixelColours, AreThoseOfTheColourMap)
{
    const std::vector<Levels> levels{{100, 0},  {10, 3}, {7, 7},        {3, 10},
                                     {0, 0},    {1, 0},  {30000, 20.5}, {250.75, 1},
                                     {-5, -50}, {64, 0}, {3e9, 17}};
    const MImage image = testImage<TypeParam>(levels);
    DrawnImage view(QSize(width, height));
    ASSERT_TRUE(view.open(image));
    ASSERT_TRUE(view.drawer->usesGlsl());
    ASSERT_EQ(view.drawer->visibleRange(), QRectF(0, 0, width, height));

    for (const bool highlight : {false, true}) {
        view.service->toggleHighlightDefective(highlight);
        view.service->toggleHighlightSaturated(highlight);
        for (const MColorTable* family : {MColorTable::hdr(), MColorTable::grey(),
                                          MColorTable::heat(), MColorTable::rainbow()}) {
            for (const MColorTable* table : {family, family->inverseTable()}) {
                for (const auto& [foreground, background] : levels) {
                    const ContrastData contrast(foreground, background, table, false);
                    view.service->setContrastData(contrast);
                    const Differences found =
                        compare(view.drawer->grab(), image, contrast, highlight);
                    EXPECT_EQ(found.beyond, 0)
                        << table->identifier() << (table->inverse() ? " inverse" : "") << " from "
                        << background << " to " << foreground << ": " << found.first;
                    EXPECT_LT(found.neighbours, width * height / 50);
                }
            }
        }
    }
}

TEST(PixelColoursOnTheProcessor, AreThoseOfTheColourMapExactly)
{
    const std::vector<Levels> levels{{100, 0}, {10, 3}};
    const MImage image = testImage<int>(levels);
    DrawnImage view(QSize(width, height), false);
    ASSERT_TRUE(view.open(image));
    ASSERT_FALSE(view.drawer->usesGlsl());
    for (const auto& [foreground, background] : levels) {
        const ContrastData contrast(foreground, background, MColorTable::hdr(), false);
        view.service->setContrastData(contrast);
        const Differences found = compare(view.drawer->grab(), image, contrast, true);
        EXPECT_EQ(found.beyond + found.neighbours, 0) << found.first;
    }
}

/// In the course of a drag only numbers change, also when another table is asked for: that waits
/// for the record that ends the drag.
TEST(ContrastDrag, TablesStayUntilItsEnd)
{
    DrawnImage view(QSize(width, height));
    ASSERT_TRUE(view.open(testImage<int>({{100, 0}})));
    view.service->toggleHighlightDefective(false);
    view.service->toggleHighlightSaturated(false);
    const auto picture = [&view](double foreground, const MColorTable* table, bool drag) {
        view.service->setContrastData({foreground, 0, table, drag});
        return view.drawer->grab();
    };
    const QImage grey = picture(50, MColorTable::grey(), false);
    const QImage inverse = picture(50, MColorTable::grey()->inverseTable(), false);
    ASSERT_NE(picture(100, MColorTable::grey(), false), grey);
    EXPECT_EQ(picture(50, MColorTable::grey()->inverseTable(), true), grey);
    EXPECT_EQ(picture(50, MColorTable::grey()->inverseTable(), false), inverse);
    EXPECT_NE(grey, inverse);
}

}  // namespace
