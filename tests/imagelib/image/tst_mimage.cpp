// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MImage as a value: construction, sharing, pixel access and conversion.
#include "imagelib/image/MImage.h"

#include <boost/optional/optional_io.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace morvend;
using imglib::MBasicImageOptionalData;
using imglib::MImage;

TEST(MImage, DefaultIsEmptyAndHasNoType)
{
    const MImage image;
    EXPECT_TRUE(image.empty());
    EXPECT_EQ(image.type(), datatypes::NONE);
    EXPECT_EQ(image.typeBits(), 0u);
    EXPECT_EQ(image.cdata(), nullptr);
    EXPECT_EQ(image.pixel<int>(0, 0, 42), 42);
    EXPECT_TRUE(image.asType<float>().empty());
    EXPECT_FALSE(image.optionalData().wavelength());
}

TEST(MImage, RefusesSizesAndTypesThatCannotBe)
{
    EXPECT_THROW(MImage(-1, 5, datatypes::INT, 32), MBadParameterException);
    EXPECT_THROW(MImage(5, -1, 7), MBadParameterException);
    EXPECT_THROW(MImage(2, 2, datatypes::FLOAT, 16), MNotImplementedException);
    EXPECT_THROW(MImage(2, 2, datatypes::NONE, 0), MNotImplementedException);
    EXPECT_THROW(MImage(std::numeric_limits<int>::max(), std::numeric_limits<int>::max(),
                        datatypes::FLOAT, 64),
                 MRuntimeException);
    const MImage::BasicImage four(std::allocator<char>(), datatypes::UINT, 8, 4);
    EXPECT_THROW(MImage(3, 2, four), MBadParameterException);
}

TEST(MImage, CopiesShareUntilOneWrites)
{
    MImage first(3, 2, 7);
    first.optionalData().set_description("before");
    MImage second = first;
    EXPECT_EQ(first.cdata(), second.cdata());
    static_cast<int*>(second.data())[5] = 8;
    EXPECT_NE(first.cdata(), second.cdata());
    EXPECT_EQ(first.pixel<int>(2, 1, 0), 7);
    EXPECT_EQ(second.pixel<int>(2, 1, 0), 8);
    second.optionalData().set_description("after");
    EXPECT_EQ(first.optionalData().description(), std::string("before"));

    const MImage moved = std::move(second);
    EXPECT_TRUE(second.empty());  // NOLINT: a moved-from image is the empty one
    EXPECT_EQ(second.width(), 0);
    EXPECT_EQ(moved.optionalData().description(), std::string("after"));
}

TEST(MImage, PixelsRunRowByRowAndOutsideIsTheFallback)
{
    const unsigned short values[] = {1, 2, 3, 4, 5, 65535};
    MBasicImageOptionalData<> header;
    header.set_count_time(0.5f);
    const MImage::BasicImage buffer(values, 6);
    const MImage image(3, 2, buffer), row(buffer, header);
    EXPECT_EQ(image.pixel<int>(0, 1, 0), 4);
    EXPECT_EQ(image.pixel<double>(2, 1, 0.0), 65535.0);
    EXPECT_EQ(image.pixel<signed char>(2, 1, 0), -1);
    for (const auto& [x, y] : {std::pair(-1, 0), {0, -1}, {3, 0}, {0, 2}})
        EXPECT_EQ(image.pixel<long long>(x, y, -77), -77);
    EXPECT_EQ(image.dataSize(), 12u);
    EXPECT_EQ(std::pair(row.width(), row.height()), std::pair(6, 1)) << "without a geometry";
    EXPECT_EQ(row.optionalData().count_time(), 0.5f);
}

TEST(MImage, ConversionKeepsTheHeaderAndSharesWhereItCan)
{
    MImage image(2, 1, -3);
    image.optionalData().set_pixel_mask(MImage(image, 1u));
    EXPECT_EQ(image.asType<int>().cdata(), image.cdata());
    const MImage real = image.asType<float>();
    EXPECT_EQ(real.pixel<double>(0, 0, 0.0), -3.0);
    ASSERT_TRUE(real.optionalData().pixel_mask());
    EXPECT_EQ(real.optionalData().pixel_mask()->cdata(),
              image.optionalData().pixel_mask()->cdata());
    EXPECT_EQ(image.asType<unsigned int>().pixel<double>(1, 0, 0.0), 4294967293.0);
}

TEST(MImage, SamePixelsComparesTypeSizeAndBytes)
{
    const MImage image(2, 3, 1);
    EXPECT_TRUE(samePixels(MImage(image, 16u), MImage(2, 3, 16u))) << "size of the other one";
    EXPECT_TRUE(samePixels(image, MImage(2, 3, 1)));
    EXPECT_FALSE(samePixels(image, MImage(3, 2, 1)));
    EXPECT_FALSE(samePixels(image, MImage(2, 3, 1u)));
    EXPECT_FALSE(samePixels(image, MImage(2, 3, 2)));
}

TEST(MBasicImage, IsAValue)
{
    const double values[] = {1.0, 2.0};
    MImage::BasicImage first(values, 2);
    MImage::BasicImage second = std::move(first);
    EXPECT_EQ(second.size(), 2u);
    EXPECT_TRUE(first.empty());  // NOLINT: a moved-from buffer is the empty one
    EXPECT_EQ(first.type(), datatypes::NONE);
    first = second;
    EXPECT_EQ(first.cdata(), second.cdata());
    static_cast<double*>(second.data())[0] = 9.0;
    EXPECT_EQ(static_cast<const double*>(first.cdata())[0], 1.0);
    second.clear();
    EXPECT_TRUE(second.empty());
    EXPECT_EQ(second.data(), nullptr);
    const MImage::BasicImage none(std::allocator<char>(), datatypes::INT, 32, 0);
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none.typeBits(), 32u);
}
