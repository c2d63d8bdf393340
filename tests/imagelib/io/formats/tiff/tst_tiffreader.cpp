// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pixel types, pages and headers of TIFF files, from bytes written out by hand.
#include "tests/imagelib/io/formats/tiff/TiffCases.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

template <class T>
class TiffType : public testing::Test {};

using FileTypes =
    testing::Types<std::uint8_t, std::int8_t, std::uint16_t, std::int16_t, std::uint32_t,
                   std::int32_t, unsigned long long, long long, float, double>;
TYPED_TEST_SUITE(TiffType, FileTypes);

TYPED_TEST(TiffType, IsReadExactlyInBothByteOrders)
{
    using Limits = std::numeric_limits<TypeParam>;
    const std::vector<TypeParam> pixels = {Limits::min(), Limits::max(), Limits::lowest(),
                                           TypeParam(1),  TypeParam(2),  TypeParam(77)};
    for (const bool bigEndian : {false, true})
        for (const bool bigTiff : {false, true}) {
            const auto file = openBytes(tiffOf(3, pixels, "", bigEndian, bigTiff));
            ASSERT_TRUE(file);
            EXPECT_EQ(file->frameCount(), 1u);
            const MImage image = file->frame(0);
            EXPECT_EQ(image.type(), datatypes::typeOf<TypeParam>);
            EXPECT_EQ(image.typeBits(), datatypes::bitsOf<TypeParam>);
            EXPECT_EQ(image.width(), 3);
            EXPECT_EQ(image.height(), 2);
            EXPECT_EQ(std::memcmp(image.cdata(), pixels.data(), image.dataSize()), 0)
                << bigEndian << bigTiff;
        }
}

const std::vector<std::uint16_t> SixPixels = {1, 2, 3, 4, 5, 65535};
constexpr const char* SixShown = "UINT16 3x2: 1 2 3 4 5 65535";

struct TagCase {
    const char* name;
    const char* tags;
};

class TiffTags : public testing::TestWithParam<TagCase> {};

TEST_P(TiffTags, LeaveTheCountsAlone)
{
    const auto file = openBytes(tiffOf(3, SixPixels, GetParam().tags));
    EXPECT_EQ(shown(file->frame(0)), SixShown);
}

INSTANTIATE_TEST_SUITE_P(
    Unusual, TiffTags,
    testing::Values(
        TagCase{"WhiteIsZero", "262 S 0"}, TagCase{"Palette", "262 S 3"},
        TagCase{"NoPhotometric", "262 -"}, TagCase{"LinearRaw", "262 S 34892"},
        TagCase{"RotatedOrientation", "274 S 6"}, TagCase{"BottomLeftOrientation", "274 S 4"},
        TagCase{"NoSampleFormat", "339 -"}, TagCase{"VoidSampleFormat", "339 S 4"},
        TagCase{"SampleFormatTwice", "339 S 1 1"}, TagCase{"NoRowsPerStrip", "278 -"},
        TagCase{"RowsPerStripOfAllOnes", "278 L 4294967295"},
        TagCase{"MoreRowsPerStripThanRows", "278 L 100"}, TagCase{"NoByteCounts", "279 -"},
        TagCase{"ByteCountZero", "279 L 0"}, TagCase{"ByteCountTooLow", "279 L 4"},
        TagCase{"ByteCountTooHigh", "279 L 4000000000"}, TagCase{"NoSamplesPerPixel", "277 -"},
        TagCase{"NoCompression", "259 -"}, TagCase{"SeparatePlanes", "284 S 2"},
        TagCase{"PrivateTagOfCountZero", "65000 L"},
        TagCase{"TwoStrips", "273 L 8 14\n278 L 1\n279 L 6 6"}),
    [](const auto& row) { return row.param.name; });

TEST(TiffStrips, AreFoundInAnyOrderInTheFile)
{
    for (const bool bigEndian : {false, true}) {
        TiffBuilder builder(bigEndian);
        const auto c = builder.data(builder.values<std::uint16_t>({5, 65535}));
        builder.data("gap");
        const auto a = builder.data(builder.values<std::uint16_t>({1, 2}));
        const auto b = builder.data(builder.values<std::uint16_t>({3, 4}));
        std::ostringstream more;
        more << "273 L " << a << ' ' << b << ' ' << c << "\n278 L 1\n279 L 4 4 4";
        builder.page(tags(2, 3, 16, 1, a, 4) + more.str());
        EXPECT_EQ(shown(openBytes(builder.bytes())->frame(0)), "UINT16 2x3: 1 2 3 4 5 65535");
    }
}

struct SignCase {
    const char* name;
    std::vector<std::uint32_t> pixels;
    const char* format;
    const char* shown;
};

class TiffSign : public testing::TestWithParam<SignCase> {};

TEST_P(TiffSign, IsTakenFromTheFlags)
{
    for (const bool bigEndian : {false, true}) {
        const auto file = openBytes(tiffOf(2, GetParam().pixels, GetParam().format, bigEndian));
        EXPECT_EQ(shown(file->frame(0)), GetParam().shown);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Untold, TiffSign,
    testing::Values(
        SignCase{"GapFlag", {5, 4294967295u}, "339 -", "INT32 2x1: 5 -1"},
        SignCase{"BadFlag", {4294967294u, 7}, "339 -", "INT32 2x1: -2 7"},
        SignCase{"UndefinedFormat", {5, 4294967295u}, "339 S 4", "INT32 2x1: 5 -1"},
        SignCase{"NoFlag", {5, 2147483647}, "339 -", "UINT32 2x1: 5 2147483647"},
        SignCase{"HugeCount", {2147483648u, ~0u}, "339 -", "UINT32 2x1: 2147483648 4294967295"},
        SignCase{"MinusThree", {4294967293u, ~0u}, "339 -", "UINT32 2x1: 4294967293 4294967295"},
        SignCase{"ToldUnsigned", {5, 4294967295u}, "339 S 1", "UINT32 2x1: 5 4294967295"},
        SignCase{"ToldSigned", {5, 4294967295u}, "339 S 2", "INT32 2x1: 5 -1"}),
    [](const auto& row) { return row.param.name; });

TEST(TiffSignOfLargePages, DependsOnTheLastPixelToo)
{
    std::vector<std::uint32_t> pixels(300000, 1);
    EXPECT_EQ(openBytes(tiffOf(1000, pixels, "339 -"))->frame(0).type(), datatypes::UINT);
    pixels.back() = 4294967295u;
    EXPECT_EQ(openBytes(tiffOf(1000, pixels, "339 -"))->frame(0).type(), datatypes::INT);
    pixels.front() = 3000000000u;
    EXPECT_EQ(openBytes(tiffOf(1000, pixels, "339 -"))->frame(0).type(), datatypes::UINT);
}

struct NarrowCase {
    const char* name;
    int width;
    std::size_t bits;
    int format;
    std::string data;
    const char* shown;
};

class TiffNarrow : public testing::TestWithParam<NarrowCase> {};

TEST_P(TiffNarrow, IsWidened)
{
    const NarrowCase& row = GetParam();
    TiffBuilder builder(true);
    const auto offset = builder.data(row.data);
    builder.page(tags(row.width, 2, row.bits, row.format, offset, row.data.size()));
    EXPECT_EQ(shown(openBytes(builder.bytes())->frame(0)), row.shown);
}

using namespace std::string_literals;
INSTANTIATE_TEST_SUITE_P(
    Bits, TiffNarrow,
    testing::Values(NarrowCase{"One", 3, 1, 1, "\xa0\x40"s, "UINT8 3x2: 1 0 1 0 1 0"},
                    NarrowCase{"Two", 3, 2, 1, "\x1b\xe4"s, "UINT8 3x2: 0 1 2 3 2 1"},
                    NarrowCase{"Four", 3, 4, 1, "\x12\x30\xfe\xd0"s, "UINT8 3x2: 1 2 3 15 14 13"},
                    NarrowCase{"Ten", 1, 10, 1, "\xff\xc0\x00\x40"s, "UINT16 1x2: 1023 1"},
                    NarrowCase{"Twelve", 2, 12, 1, "\xff\xf0\x01\x12\x34\x56"s,
                               "UINT16 2x2: 4095 1 291 1110"},
                    NarrowCase{"HalfFloats", 4, 16, 3,
                               "\x3c\x00\xc0\x00\x7b\xff\x00\x01\x80\x00\x7c\x00\xfc\x00\x04\x00"s,
                               "FLOAT32 4x2: 1 -2 65504 5.96046e-08 -0 inf -inf 6.10352e-05"}),
    [](const auto& row) { return row.param.name; });

TEST(TiffNarrowFloats, KeepNotANumber)
{
    EXPECT_TRUE(std::isnan(openBytes(tiffOf(1, std::vector<std::uint16_t>{0x7e01}, "339 S 3"))
                               ->frame(0)
                               .pixel(0, 0, 0.0f)));
}

TEST(TiffPages, AreFramesAndPreviewsAreNot)
{
    for (const bool bigTiff : {false, true}) {
        TiffBuilder builder(false, bigTiff);
        const auto add = [&](std::uint8_t value, const std::string& more) {
            const auto offset = builder.data(std::string(1, static_cast<char>(value)));
            builder.page(tags(1, 1, 8, 1, offset, 1) + more);
        };
        add(1, "254 L 0");
        add(2, "254 L 1");  // a preview
        add(3, "254 L 2");  // a page of several
        add(4, "254 L 4");  // a transparency mask
        add(5, "");
        const auto file = openBytes(builder.bytes());
        EXPECT_EQ(file->frameCount(), 3u);
        EXPECT_EQ(shown(file->frame(2)), "UINT8 1x1: 5");
        EXPECT_EQ(shown(file->frame(0)), "UINT8 1x1: 1");
        EXPECT_EQ(shown(file->frame(1)), "UINT8 1x1: 3");
        EXPECT_THROW(file->frame(3), MOutOfRangeException);
    }
}

TEST(TiffPages, ABrokenChainIsOneMoreFrameThatSaysWhy)
{
    TiffBuilder builder;
    for (char value : {'a', 'b'})
        builder.page(tags(1, 1, 8, 1, builder.data(std::string(1, value)), 1));
    const std::uint64_t last = builder.lastDirectory();
    const std::uint64_t none = builder.data(builder.number(0, 2));
    const std::uint64_t cut = builder.data(builder.number(16, 2) + "entries");
    const struct {
        std::uint64_t link;
        const char* text;
    } rows[] = {{last, "TIFF: page 3 can't be found: the chain of directories returns to byte"},
                {1000000, "the directory at byte 1000000 lies beyond the end of the file: /data"},
                {cut, "is cut off by the end of the file"},
                {none, "can't have 0 entries"}};
    for (const auto& row : rows) {
        builder.linkTo(row.link);
        const auto file = openBytes(builder.bytes());
        EXPECT_EQ(file->frameCount(), 3u);
        EXPECT_EQ(shown(file->frame(1)), "UINT8 1x1: 98");
        EXPECT_THAT(failureOf(builder.bytes()), HasSubstr(row.text));
    }
}

TEST(TiffPages, AppearWhenAWriterAddsThem)
{
    const TempFolder folder;
    TiffBuilder builder;
    builder.page(tags(1, 1, 8, 1, builder.data("a"), 1));
    const std::string path = folder.write("x.tif", builder.bytes());
    const auto file = openTiff(ByteSource::open(path));
    EXPECT_EQ(file->frameCount(), 1u);
    builder.page(tags(1, 1, 8, 1, builder.data("b"), 1));
    folder.write("x.tif", builder.bytes());
    file->update();
    EXPECT_EQ(file->frameCount(), 2u);
    EXPECT_EQ(shown(file->frame(1)), "UINT8 1x1: 98");
    EXPECT_EQ(shown(file->frame(0)), "UINT8 1x1: 97");
    EXPECT_EQ(file->framePath(1), path);
}

TEST(TiffHeader, ComesFromTheDescription)
{
    const auto file = openBytes(
        tiffOf(3, SixPixels,
               "270 A # Pixel_size 172e-6 m x 172e-6 m\\r\\n# Exposure_time 0.5 s\\r\\n\\0"
               "# Wavelength 1.25 A\\r\\n# Detector: One, S/N 7\\0\\0\\0\n"
               "272 A Other\\0\n306 A 2020:01:02 03:04:05\\0"));
    const MImage image = file->frame(0);
    const auto& header = image.optionalData();
    EXPECT_FLOAT_EQ(*header.x_pixel_size(), 172e-6f);
    EXPECT_FLOAT_EQ(*header.count_time(), 0.5f);
    EXPECT_FLOAT_EQ(*header.wavelength(), 1.25f);
    EXPECT_EQ(*header.description(), "One");
    EXPECT_EQ(*header.detector_number(), "7");
    EXPECT_EQ(*header.data_collection_date(), "2020:01:02 03:04:05");
    EXPECT_EQ(*header.rawHeader(), "# Pixel_size 172e-6 m x 172e-6 m\r\n# Exposure_time 0.5 s\r\n\n"
                                   "# Wavelength 1.25 A\r\n# Detector: One, S/N 7");
}

TEST(TiffHeader, MayBeShortElsewhereOrAbsent)
{
    const auto header = [](const char* more) {
        return openBytes(tiffOf(3, SixPixels, more))->frame(0).optionalData();
    };
    EXPECT_EQ(*header("270 A abc").rawHeader(), "abc");
    EXPECT_EQ(*header("272 A Model\\0").description(), "Model");
    EXPECT_FALSE(header("270 A \\0\\0").rawHeader());
    EXPECT_FALSE(header("").rawHeader());
    EXPECT_FALSE(header("").description());
    EXPECT_EQ(*header("270 A # 2021-05-06T07:08:09\\0\n306 A 2020:01:02 03:04:05\\0")
                   .data_collection_date(),
              "2021-05-06T07:08:09");
}

TEST(TiffHeader, TextBeyondTheEndOfTheFileIsNoFailure)
{
    std::string bytes = tiffOf(3, SixPixels, "270 A # Exposure_time 0.5 s\\0");
    // The text stands just before the directory: point its entry far away.
    const std::string entry = TiffBuilder().number(270, 2) + TiffBuilder().number(2, 2);
    const std::size_t at = bytes.find(entry);
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at + 8, 4, "\xff\xff\xff\x7f");
    EXPECT_EQ(shown(openBytes(bytes)->frame(0)), SixShown);
}

}  // namespace
