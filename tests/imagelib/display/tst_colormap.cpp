// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colour map against the transfer function written out pixel by pixel: every pixel type, every
// mask type, every instruction set, and levels in every order.
#include "imagelib/display/ColorMapper.h"
#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MRect.h"
#include "imagelib/image/MImage.h"
#include "tests/imagelib/display/TransferReference.h"
#include "tests/support/EveryTarget.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const Contrast contrasts[] = {
    {"Usual", 100, 3, 1e6},
    {"FromZero", 1, 0, 1e4},
    {"Fractions", 2.7, 0.3, 27000},
    {"Equal", 5, 5, 5e4},
    {"Inverted", 10, 20, 1e5},
    {"AllBelowBackground", 10, 500, 300},
    {"LogNotAboveForeground", 100, 0, 100},
    {"LogBelowForeground", 100, 0, 50},
    {"LogJustAboveForeground", 1000, 0, 1001},
    {"NarrowLog", 1000, 10, 3000},
    {"NegativeBackground", 10, -1000, 1e5},
    {"NegativeForeground", -5, -20, -50000},
    {"WideLinear", 60000, 7, 6e8},
    {"BeyondTypes", 3e9, -3e9, 3e13},
    {"Beyond32Bits", 1e40, 0, 1e44},
    {"Tiny", 2.2250738585072014e-308, 2.2250738585072014e-308, 2.2250738585072014e-304},
    {"SmallFloats", 1e-3, 1e-6, 10},
    {"Infinite", inf, -inf, inf},
    {"NotANumber", nan, nan, nan},
};

const MColorTable* const tables[] = {MColorTable::hdr(), MColorTable::hdr()->inverseTable(),
                                     MColorTable::grey(), MColorTable::rainbow()};

/// The pixel as the display sees it: wider integers are held at the ends of 32 bits.
template <class T>
auto displayed(T value)
{
    if constexpr (std::is_same_v<T, unsigned long long>)
        return unsigned(std::min<T>(value, 0xffffffffU));
    else if constexpr (std::is_same_v<T, long long>)
        return int(std::clamp<T>(value, INT32_MIN, INT32_MAX));
    else if constexpr (std::is_floating_point_v<T>)
        return float(value);
    else if constexpr (datatypes::typeOf<T> == datatypes::UINT)
        return unsigned(value);
    else
        return int(value);
}

/// All the values around which the rules change, and a spread of others.
std::vector<double> telling(const Contrast& c)
{
    std::vector<double> values{0, 1, 2, 3, 127, 255, 65535, 2147483647, 4294967295, 1e19, 1e38};
    for (const double level : {c.foreground, c.background, c.logForeground})
        for (const double step : {-1.0, -0.5, 0.0, 0.5, 1.0, 2.0})
            values.push_back(level + step);
    for (double value = 1e-4; value < 1e10; value *= 1.1)
        values.push_back(value);
    const std::size_t positive = values.size();
    for (std::size_t i = 0; i < positive; ++i)
        values.push_back(-values[i]);
    values.insert(values.end(), {nan, inf, -inf, -0.0});
    return values;
}

template <class T>
MImage imageOf(const std::vector<double>& values)
{
    MImage image(static_cast<int>(values.size()), 1, T(0));
    auto* out = static_cast<T*>(image.data());
    for (const double value : values)
        *out++ = datatypes::convertPixel<T>(value);
    return image;
}

MImage colored(const MImage& image, const Contrast& c, const MColorTable& table,
               const MImage* mask = nullptr, const Highlight& h = {},
               const std::string& format = "ARGB", MRect* rect = nullptr)
{
    MImage result;
    MColorMap::rgb(result, image, c.foreground, c.background, c.logForeground, table, format, mask,
                   rect, h.cutoff, h.defective, h.saturated);
    return result;
}

/// Compares each pixel with the rules; returns how many had the neighbouring entry of a logarithm.
template <class T>
int compare(const MImage& image, const std::vector<std::uint32_t>& mask, const MImage& result,
            const Contrast& c, const MColorTable& table, const Highlight& h)
{
    int beside = 0;
    const T* pixels = image.pixels<T>();
    const auto* colors = result.pixels<unsigned int>();
    for (std::size_t i = 0; i < image.size(); ++i) {
        const Expected expected =
            expectedColor(displayed(pixels[i]), mask.empty() ? 0 : mask[i], c, table, h);
        beside += colors[i] != expected.color;
        if (!expected.accepts(colors[i])) {
            ADD_FAILURE() << "pixel " << i << " of value " << double(pixels[i]) << ": " << std::hex
                          << colors[i] << " instead of " << expected.color << ", table "
                          << table.identifier();
            return beside;
        }
    }
    return beside;
}

std::string typeName(const MImage& image)
{
    return datatypes::typeStr(image.type()) + std::to_string(image.typeBits());
}

TEST(ColorMap, FollowsTheRulesForEveryPixelTypeAndContrast)
{
    for (const Contrast& c : contrasts) {
        SCOPED_TRACE(c.name);
        const std::vector<double> values = telling(c);
        std::vector<std::uint32_t> flags(values.size());
        std::mt19937 random(7);
        for (auto& flag : flags)
            flag = random() % 3 ? 0 : random() % 64;
        MImage mask(static_cast<int>(values.size()), 1, 0U);
        std::copy(flags.begin(), flags.end(), static_cast<unsigned*>(mask.data()));
        const auto check = [&]<class T>(T) {
            const MImage image = imageOf<T>(values);
            SCOPED_TRACE(typeName(image));
            for (const MColorTable* table : tables) {
                compare<T>(image, {}, colored(image, c, *table), c, *table, {});
                for (const Highlight& h : {Highlight{50, true, true}, Highlight{50, true, false},
                                           Highlight{50, false, true}, Highlight{50, false, false},
                                           Highlight{-3, true, true}})
                    compare<T>(image, flags, colored(image, c, *table, &mask, h), c, *table, h);
            }
        };
        std::apply([&](auto... zero) { (check(zero), ...); }, datatypes::PixelTypes{});
    }
}

TEST(ColorMap, EveryMaskTypeCountsByItsLowBits)
{
    const std::vector<double> flags{0, 1, 2, 3, 4, 8, 16, 17, 31, 32, 33, 64, 96, 127, -1, -2, -32};
    const Contrast c{"", 10, 0, 1e5};
    const Highlight h{1000, true, true};
    const MColorTable& table = *MColorTable::hdr();
    const MImage image(static_cast<int>(flags.size()), 1, 5U);
    const auto check = [&]<class M>(M) {
        const MImage mask = imageOf<M>(flags);
        SCOPED_TRACE(typeName(mask));
        const std::vector<M> plain(mask.pixels<M>(), mask.pixels<M>() + mask.size());
        std::vector<std::uint32_t> bits;
        for (const M flag : plain)
            bits.push_back(datatypes::convertPixel<std::uint32_t>(flag));
        compare<unsigned>(image, bits, colored(image, c, table, &mask, h), c, table, h);
    };
    std::apply([&](auto... zero) { (check(zero), ...); }, datatypes::PixelTypes{});
}

/// Poisson-like counts over seven decades, of a size that is no multiple of any vector.
template <class T>
MImage randomImage(int width, int height)
{
    std::mt19937 random(11);
    MImage image(width, height, T(0));
    auto* out = static_cast<T*>(image.data());
    for (std::size_t i = 0; i < image.size(); ++i)
        out[i] = static_cast<T>(std::pow(10.0, double(random() % 70000) / 1e4) - 3.0);
    return image;
}

TEST(ColorMap, RandomImagesHaveTheColoursOfTheRules)
{
    const Highlight h{900000, true, true};
    const MColorTable& table = *MColorTable::hdr();
    for (const Contrast& c : {contrasts[0], contrasts[6], contrasts[9], contrasts[12]}) {
        const auto check = [&]<class T>(T) {
            const MImage image = randomImage<T>(331, 67);
            forEveryTarget([&] {
                // Single precision and exact borders differ at few pixels only.
                EXPECT_LT(compare<T>(image, {}, colored(image, c, table, {}, h), c, table, h),
                          int(image.size() / 200));
            });
        };
        check(int());
        check(0U);
        check(0.0F);
    }
}

TEST(ColorMap, LogarithmicEntriesAreThoseOfTheExactLogarithm)
{
    const Contrast c{"", 7, 2, 70000};
    const MColorTable& table = *MColorTable::hdr();
    MImage image(69993, 1, 0U);
    for (unsigned i = 0; i < 69993; ++i)
        static_cast<unsigned*>(image.data())[i] = 7 + i;
    const MImage result = colored(image, c, table);
    const double slope = 1023.0 / std::log((70000.0 - 2.0) / (7.0 - 2.0));
    for (unsigned i = 7; i < 70000; ++i) {
        const double place = slope * std::log(i - 2.0) - slope * std::log(5.0);
        // At a whole number the two logarithms may round to either side.
        if (std::abs(place - std::round(place)) < 1e-9)
            continue;
        ASSERT_EQ(result.pixels<unsigned>()[i - 7],
                  entry(table.logData(), static_cast<std::size_t>(place)))
            << i;
    }
}

TEST(ColorMap, ARectangleIsThatPartOfTheWhole)
{
    const MImage image = randomImage<int>(61, 37);
    const MImage mask(image, 0U);
    const MImage whole = colored(image, contrasts[0], *MColorTable::heat(), &mask);
    for (MRect rect : {MRect(0, 0, 61, 37), MRect(0, 5, 61, 3), MRect(13, 7, 20, 9),
                       MRect(60, 36, 1, 1), MRect(3, 0, 1, 37)}) {
        const MImage part =
            colored(image, contrasts[0], *MColorTable::heat(), &mask, {}, "ARGB", &rect);
        ASSERT_EQ(part.width(), rect.width());
        ASSERT_EQ(part.height(), rect.height());
        EXPECT_EQ(part.type(), datatypes::UINT);
        EXPECT_EQ(part.typeBits(), 32U);
        for (int y = 0; y < rect.height(); ++y)
            for (int x = 0; x < rect.width(); ++x)
                ASSERT_EQ(part.pixel(x, y, 0U), whole.pixel(x + rect.left(), y + rect.top(), 1U));
    }
    MRect nothing;
    EXPECT_TRUE(
        colored(image, contrasts[0], *MColorTable::heat(), &mask, {}, "ARGB", &nothing).empty());
}

TEST(ColorMap, RunsEndWhereTheyShall)
{
    const MImage image = randomImage<unsigned short>(97, 31);
    const MImage whole = colored(image, contrasts[0], *MColorTable::hdr());
    const ColorMapper mapper({100, 3, 1e6, MColorTable::hdr()}, image.type());
    for (const std::size_t first : {0U, 1U, 1000U, 3000U})
        for (const std::size_t size : {0U, 1U, 2U, 7U, 1U, 5U}) {
            std::vector<std::uint32_t> colors(size + 2, 1234);
            mapper.run(std::span(colors).subspan(1, size), image, nullptr, first);
            EXPECT_EQ(colors.front(), 1234U);
            EXPECT_EQ(colors.back(), 1234U);
            EXPECT_TRUE(
                std::equal(colors.begin() + 1, colors.end() - 1, whole.pixels<unsigned>() + first));
        }
}

TEST(ColorMap, RgbaHoldsTheSameColoursAsBytes)
{
    const MImage image = randomImage<float>(50, 20);
    const MImage argb = colored(image, contrasts[0], *MColorTable::hdr());
    const MImage rgba = colored(image, contrasts[0], *MColorTable::hdr(), nullptr, {}, "RGBA");
    for (std::size_t i = 0; i < image.size(); ++i) {
        const unsigned color = argb.pixels<unsigned>()[i];
        const auto* bytes = static_cast<const unsigned char*>(rgba.cdata()) + 4 * i;
        ASSERT_THAT(std::vector(bytes, bytes + 4),
                    testing::ElementsAre(color >> 16 & 255, color >> 8 & 255, color & 255, 255));
    }
}

TEST(ColorMap, TheResultMayBeTheImage)
{
    const MImage image = randomImage<int>(40, 30);
    const MImage expected = colored(image, contrasts[0], *MColorTable::hdr());
    MImage same = image;
    MColorMap::rgb(same, same, 100, 3, 1e6, *MColorTable::hdr(), "ARGB", nullptr, nullptr, 0, false,
                   false);
    EXPECT_TRUE(samePixels(same, expected));
    EXPECT_TRUE(colored(MImage(), contrasts[0], *MColorTable::hdr()).empty());
}

TEST(ColorMap, RefusesWhatItCannotDo)
{
    const MImage image(10, 8, 0U);
    const MImage mask(8, 10, 0U);
    const MColorTable& table = *MColorTable::grey();
    const auto refused = [&](const auto& text, const char* format, const MImage* with,
                             MRect* rect = nullptr) {
        EXPECT_THAT([&] { colored(image, contrasts[0], table, with, {}, format, rect); },
                    testing::ThrowsMessage<MBadParameterException>(text));
    };
    for (const char* format : {"", "argb", "RGB", "ARGB "})
        refused("Unknown colour format \"" + std::string(format) + "\"", format, nullptr);
    refused("A mask of 8 x 10 pixels does not fit an image of 10 x 8", "ARGB", &mask);
    for (MRect rect : {MRect(0, 0, 11, 8), MRect(-1, 0, 5, 5), MRect(6, 0, 5, 5), MRect(0, 4, 5, 5),
                       MRect(2147483647, 0, 5, 5), MRect(0, 0, -1, 5)})
        refused(testing::EndsWith("leaves an image of 10 x 8"), "ARGB", nullptr, &rect);
}

}  // namespace
