// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixels come back as they were.
#include "imagelib/codec/PackedPixels.h"
#include "imagelib/image/PixelTypes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

namespace {

using morvend::codec::PackedPixels;
using morvend::imglib::MImage;
namespace datatypes = morvend::datatypes;

TEST(PackedPixels, ComeBackInEachPixelType)
{
    // No multiple of any block or vector.
    constexpr int width = 331;
    constexpr int height = 277;
    for (const auto type : {datatypes::INT, datatypes::UINT, datatypes::FLOAT}) {
        for (const std::size_t bits : {8U, 16U, 32U, 64U}) {
            if (!datatypes::isPixelType(type, bits))
                continue;
            MImage image(width, height, type, bits);
            auto* bytes = static_cast<unsigned char*>(image.data());
            for (std::size_t i = 0; i < image.dataSize(); ++i)
                bytes[i] = i % (bits / 8) == 0 ? static_cast<unsigned char>(i / 997 % 11) : 0x7F;
            bytes[image.dataSize() - 1] = 0xFF;
            const auto packed = PackedPixels::of(image);
            ASSERT_TRUE(packed) << type << bits;
            EXPECT_LT(packed->bytes(), image.dataSize() / 4 * 3);
            EXPECT_TRUE(samePixels(packed->unpacked(), image)) << type << bits;
        }
    }
}

TEST(PackedPixels, AreNoneWhereThatSavesNothing)
{
    EXPECT_FALSE(PackedPixels::of(MImage(10, 10, 0U)));
    MImage noise(400, 400, 0U);
    auto* pixel = static_cast<unsigned int*>(noise.data());
    std::mt19937 random;
    std::generate_n(pixel, noise.size(), std::ref(random));
    EXPECT_FALSE(PackedPixels::of(noise));
    EXPECT_FALSE(PackedPixels::of(MImage()));
}

}  // namespace
