// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pictures of images: colours, special pixels and scale.
#include "bin/image/Render.h"

#include "imagelib/display/MColorTable.h"
#include "imagelib/image/MImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

using namespace morvend;
using imglib::MColorTable;
using imglib::MImage;
using namespace tarvik::tool;

namespace {

/// 3 x 2 pixels: 0 to 5.
MImage sixPixels()
{
    MImage image(3, 2, 0);
    for (int i = 0; i < 6; ++i)
        static_cast<int*>(image.data())[i] = i;
    return image;
}

Arguments greyFromZeroTo(double foreground)
{
    Arguments arguments;
    arguments.table = "GS";
    arguments.background = 0;
    arguments.foreground = foreground;
    return arguments;
}

std::uint32_t entry(const unsigned char* data, std::size_t position)
{
    std::uint32_t colour = 0;
    std::memcpy(&colour, data + 4 * position, 4);
    return colour;
}

}  // namespace

TEST(RenderedPicture, GoesFromTheFirstToTheLastColour)
{
    const Picture picture = Render::paint(sixPixels(), greyFromZeroTo(5));
    const MColorTable& table = *MColorTable::grey();
    ASSERT_EQ(picture.pixels.size(), 6u);
    EXPECT_EQ(picture.pixels[0], entry(table.linData(), 0));
    EXPECT_EQ(picture.pixels[5], entry(table.linData(), table.linDataSize() - 1));
    for (std::size_t i = 1; i < 6; ++i)
        EXPECT_NE(picture.pixels[i], picture.pixels[i - 1]);
}

TEST(RenderedPicture, TablesGoByBothTheirNames)
{
    const std::pair<const char*, const MColorTable*> names[] = {
        {"HDR", MColorTable::hdr()},    {"High Dynamic Range", MColorTable::hdr()},
        {"GS", MColorTable::grey()},    {"Grey Scale", MColorTable::grey()},
        {"H", MColorTable::heat()},     {"Heat", MColorTable::heat()},
        {"RB", MColorTable::rainbow()}, {"Rainbow", MColorTable::rainbow()}};
    for (const auto& [name, table] : names) {
        Arguments arguments = greyFromZeroTo(5);
        arguments.table = name;
        EXPECT_EQ(Render::paint(sixPixels(), arguments).pixels[0], entry(table->linData(), 0))
            << name;
    }
    Arguments unknown;
    unknown.table = "hdr";
    EXPECT_THROW(Render::paint(sixPixels(), unknown), UsageError);
}

TEST(RenderedPicture, MarksMaskedDefectiveAndSaturatedPixels)
{
    MImage image = sixPixels();
    MImage mask(image, 0u);
    static_cast<unsigned*>(mask.data())[1] = 1;
    static_cast<unsigned*>(mask.data())[2] = 4;
    image.optionalData().set_pixel_mask(mask);
    const Picture before = Render::paint(image, greyFromZeroTo(5));
    image.optionalData().set_saturation_value(5);
    const Picture after = Render::paint(image, greyFromZeroTo(5));
    const MColorTable& table = *MColorTable::grey();
    EXPECT_EQ(after.pixels[1], 0xff000000u);
    EXPECT_EQ(after.pixels[2], table.defectiveColor());
    EXPECT_EQ(after.pixels[4], before.pixels[4]);
    EXPECT_EQ(after.pixels[5], table.saturatedColor());
    EXPECT_NE(before.pixels[5], table.saturatedColor());
}

TEST(RenderedPicture, AMaskOfAnotherSizeIsNotUsed)
{
    MImage image = sixPixels();
    const Picture without = Render::paint(image, greyFromZeroTo(5));
    image.optionalData().set_pixel_mask(MImage(2, 2, 1u));
    EXPECT_EQ(Render::paint(image, greyFromZeroTo(5)).pixels, without.pixels);
}

TEST(RenderedPicture, ScalesByWholePixels)
{
    const Picture whole = Render::paint(sixPixels(), greyFromZeroTo(5));
    Arguments arguments = greyFromZeroTo(5);

    arguments.scale = {2, 1};
    const Picture large = Render::paint(sixPixels(), arguments);
    ASSERT_EQ(large.width, 6);
    ASSERT_EQ(large.height, 4);
    for (std::size_t i = 0; i < 24; ++i)
        EXPECT_EQ(large.pixels[i], whole.pixels[i / 6 / 2 * 3 + i % 6 / 2]) << i;

    arguments.scale = {1, 2};
    const Picture small = Render::paint(sixPixels(), arguments);
    EXPECT_EQ(small.width, 2);
    EXPECT_EQ(small.height, 1);
    EXPECT_EQ(small.pixels, (std::vector<std::uint32_t>{whole.pixels[0], whole.pixels[2]}));
}

TEST(RenderedPicture, RefusesWhatCannotBe)
{
    Arguments onlyOne, huge = greyFromZeroTo(5);
    onlyOne.foreground = -1e9;
    huge.scale = {64, 1};
    EXPECT_THROW(Render::paint(sixPixels(), greyFromZeroTo(0)), MBadParameterException);
    EXPECT_THROW(Render::paint(sixPixels(), onlyOne), MBadParameterException);
    EXPECT_THROW(Render::paint(MImage(2000, 2000, char(0)), huge), MBadParameterException);
}
