// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Largest pixels of blocks against loops over each block.
#include "imagelib/display/BlockMaxima.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using morvend::imglib::BlockMaxima;
using morvend::imglib::MImage;

namespace {

struct Block {
    double value;
    unsigned int mark;
};

Block plainBlock(const MImage& image, const MImage* mask, int left, int top, int side)
{
    const auto markAt = [&](int x, int y) { return mask ? mask->pixel<unsigned int>(x, y, 0) : 0; };
    Block block{image.pixel<double>(left, top, 0), markAt(left, top)};
    bool good = false;
    for (int y = top; y < std::min(top + side, image.height()); ++y)
        for (int x = left; x < std::min(left + side, image.width()); ++x) {
            const auto value = image.pixel<double>(x, y, 0);
            if ((markAt(x, y) & 31) != 0 || (good && !(value > block.value)))
                continue;
            good = true;
            block = {std::isnan(value) ? -HUGE_VAL : value, 0};
        }
    return block;
}

void expectBlocks(const MImage& reduced, const MImage& image, const MImage* mask, int side)
{
    ASSERT_EQ(reduced.width(), (image.width() + side - 1) / side);
    ASSERT_EQ(reduced.height(), (image.height() + side - 1) / side);
    const MImage marks = *std::as_const(reduced).optionalData().pixel_mask();
    for (int y = 0; y < reduced.height(); ++y)
        for (int x = 0; x < reduced.width(); ++x) {
            const Block wanted = plainBlock(image, mask, x * side, y * side, side);
            const auto shown = reduced.pixel<double>(x, y, 0);
            ASSERT_TRUE(shown == wanted.value || (std::isnan(shown) && std::isnan(wanted.value)))
                << typeid(shown).name() << " side " << side << " at " << x << ' ' << y << ": "
                << shown << ", not " << wanted.value;
            ASSERT_EQ(marks.pixel<unsigned int>(x, y, 99), wanted.mark) << x << ' ' << y;
        }
}

template <class T>
void expectAllBlocks(std::mt19937& random)
{
    MImage image(37, 21, T(0));
    MImage mask(37, 21, 0U);
    const unsigned int marks[] = {0, 1, 3, 4, 32, 0};
    for (std::size_t i = 0; i < image.size(); ++i) {
        static_cast<T*>(image.data())[i] = static_cast<T>(static_cast<int>(random() % 1000) - 500);
        // Whole rows of bad pixels, so that some blocks have no other.
        static_cast<unsigned int*>(mask.data())[i] =
            i / 37 % 9 < 4 ? marks[1 + random() % 3] : marks[random() % 6];
    }
    if constexpr (std::is_floating_point_v<T>)
        for (std::size_t i = 0; i < image.size(); i += 3)
            static_cast<T*>(image.data())[i] = static_cast<T>(i % 2 ? NAN : -HUGE_VAL);
    image.optionalData().set_saturation_value(123);
    for (const int side : {1, 2, 3, 4, 64}) {
        expectBlocks(blockMaxima(image, &mask, side), image, &mask, side);
        expectBlocks(blockMaxima(image, nullptr, side), image, nullptr, side);
    }
    const BlockMaxima maxima = BlockMaxima::of(image, &mask);
    expectBlocks(maxima.halves, image, &mask, 2);
    expectBlocks(maxima.quarters, image, &mask, 4);
    EXPECT_EQ(*std::as_const(maxima.quarters).optionalData().saturation_value(), 123);
}

TEST(BlockMaxima, AreTheLargestGoodPixels)
{
    std::mt19937 random(5);
    std::apply([&](auto... types) { (expectAllBlocks<decltype(types)>(random), ...); },
               std::tuple<bool, char, signed char, short, int, long long, unsigned char,
                          unsigned short, unsigned int, unsigned long long, float, double>());
    EXPECT_TRUE(BlockMaxima::of({}, nullptr).quarters.empty());
}

}  // namespace
