// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Every pixel on the screen has the colour that the processor's colour map gives it.
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/ExpectedView.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

constexpr int width = 160;
constexpr int height = 96;

/// Foreground and background.
using Levels = std::pair<double, double>;
const std::vector<Levels> allLevels{{100, 0},  {10, 3}, {7, 7},        {3, 10},
                                    {0, 0},    {1, 0},  {30000, 20.5}, {250.75, 1},
                                    {-5, -50}, {64, 0}, {3e9, 17}};

/// Values at and next to every boundary of the levels, the ends of the type, and random ones. Each
/// stands in rows of pixels without mask bits and with each of them.
template <class T>
MImage testImage()
{
    std::vector<double> values{0, 1, 2, -1, -2, 5, 1000, 1e6, 65535, 2147483647.0};
    values.insert(values.end(),
                  {-2147483648.0, 4294967295.0, 1e30, -1e30, 0.5, 1e-30, std::nan("")});
    for (const auto& [foreground, background] : allLevels)
        for (const double level : {foreground, background, foreground * 10000})
            for (const double step : {-1.0, 0.0, 1.0, -0.25, 0.25})
                values.push_back(level + step);
    std::mt19937 random(12);
    std::uniform_real_distribution<double> exponent(0, 22);
    while (values.size() < std::size_t(width * height) / 2)
        values.push_back(std::exp(exponent(random)));
    T next = 0;
    MImage image = images::of<T>(width, height, [&](int x, int y) {
        const auto i = std::size_t(y * width + x);
        return i < values.size() ? morvend::datatypes::convertPixel<T>(values[i]) : next++;
    });
    const unsigned int patterns[] = {0, 0, 0, 0, 0, 0, 1, 2, 4, 8, 16, 32, 3, 31};
    image.optionalData().set_pixel_mask(images::of<unsigned int>(
        width, height, [&](int, int y) { return patterns[std::size_t(y) % std::size(patterns)]; }));
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
Differences compare(const QImage& picture, const TarvikService& service)
{
    const MImage expected = colouredImage(service);
    const MColorTable& table = *service.contrastData().colorTable;
    std::vector<QRgb> entries(table.logDataSize());
    if (!entries.empty())
        std::memcpy(entries.data(), table.logData(), entries.size() * 4);
    std::multimap<QRgb, QRgb> next;
    for (std::size_t i = 0; i + 1 < entries.size(); ++i) {
        next.emplace(entries[i], entries[i + 1]);
        next.emplace(entries[i + 1], entries[i]);
    }
    Differences result;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto wanted = expected.pixel<unsigned int>(x, y, 0);
            const QRgb shown = picture.pixel(x, y);
            if (shown == wanted)
                continue;
            const auto [begin, end] = next.equal_range(wanted);
            if (std::any_of(begin, end, [&](const auto& pair) { return pair.second == shown; }))
                ++result.neighbours;
            else if (result.beyond++ == 0)
                result.first =
                    QString::asprintf("(%d, %d) value %g: shown %08x, wanted %08x", x, y,
                                      service.image().pixel<double>(x, y, 0), shown, wanted)
                        .toStdString();
        }
    return result;
}

/// All pixel types under all levels, with and without highlighting; every table and its inverse
/// meets all levels in the course of the types.
TEST(PixelColours, AreThoseOfTheColourMap)
{
    DrawnImage view(QSize(width, height));
    std::vector<const MColorTable*> tables;
    for (const MColorTable* table :
         {MColorTable::hdr(), MColorTable::grey(), MColorTable::heat(), MColorTable::rainbow()})
        tables.insert(tables.end(), {table, table->inverseTable()});
    std::size_t turn = 0;
    const auto check = [&]<class T>(T) {
        ASSERT_TRUE(view.openAnew(testImage<T>()));
        ASSERT_TRUE(view.drawer->usesGlsl());
        ASSERT_EQ(view.drawer->visibleRange(), QRectF(0, 0, width, height));
        for (const bool highlight : {false, true}) {
            view.service->toggleHighlightDefective(highlight);
            view.service->toggleHighlightSaturated(highlight);
            for (std::size_t i = 0; i < allLevels.size(); ++i) {
                const auto& [foreground, background] = allLevels[i];
                const MColorTable* table = tables[(i + turn + 4 * highlight) % tables.size()];
                view.service->setContrastData({foreground, background, table, false});
                const Differences found = compare(view.drawer->grab(), *view.service);
                EXPECT_EQ(found.beyond, 0)
                    << typeid(T).name() << ' ' << table->identifier() << ' ' << table->inverse()
                    << " from " << background << " to " << foreground << ": " << found.first;
                EXPECT_LT(found.neighbours, width * height / 50);
            }
        }
        ++turn;
    };
    std::apply([&](auto... types) { (check(types), ...); },
               std::tuple<int, unsigned int, float, unsigned short, short, double, char,
                          signed char, unsigned char, long long, unsigned long long>());
}

TEST(PixelColours, OnTheProcessorAreThoseOfTheColourMapExactly)
{
    DrawnImage view(QSize(width, height), false);
    ASSERT_TRUE(view.open(testImage<int>()));
    ASSERT_FALSE(view.drawer->usesGlsl());
    for (const Levels& levels : {Levels(100, 0), Levels(10, 3)}) {
        view.service->setContrastData({levels.first, levels.second, MColorTable::hdr(), false});
        const Differences found = compare(view.drawer->grab(), *view.service);
        EXPECT_EQ(found.beyond + found.neighbours, 0) << found.first;
    }
}

/// In the course of a drag only numbers change, also when another table is asked for: that waits
/// for the record that ends the drag.
TEST(ContrastDrag, TablesStayUntilItsEnd)
{
    DrawnImage view(QSize(width, height));
    ASSERT_TRUE(view.open(images::patterned(width, height)));
    const MColorTable* grey = MColorTable::grey();
    const auto picture = [&view](double foreground, const MColorTable* table, bool drag) {
        view.service->setContrastData({foreground, 0, table, drag});
        return view.drawer->grab();
    };
    const QImage plain = picture(50, grey, false);
    const QImage inverse = picture(50, grey->inverseTable(), false);
    ASSERT_NE(picture(100, grey, false), plain);
    EXPECT_EQ(picture(50, grey->inverseTable(), true), plain);
    EXPECT_EQ(picture(50, grey->inverseTable(), false), inverse);
    EXPECT_NE(plain, inverse);
}

}  // namespace
