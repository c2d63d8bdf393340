// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the TIFF reader refuses, and what it says.
#include "tests/imagelib/io/formats/tiff/TiffCases.h"
#include "tests/support/Packed.h"

#include <gmock/gmock.h>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

const std::vector<std::uint16_t> SixPixels = {1, 2, 3, 4, 5, 6};

struct RefusalCase {
    const char* name;
    const char* tags;
    const char* text;
};

class TiffRefusal : public testing::TestWithParam<RefusalCase> {};

TEST_P(TiffRefusal, NamesReasonAndFile)
{
    testing::internal::CaptureStderr();
    const std::string text = failureOf(tiffOf(3, SixPixels, GetParam().tags));
    EXPECT_THAT(text, testing::StartsWith("TIFF: "));
    EXPECT_THAT(text, HasSubstr(GetParam().text));
    EXPECT_THAT(text, testing::EndsWith(": /data/x.tif"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

INSTANTIATE_TEST_SUITE_P(
    NotRead, TiffRefusal,
    testing::Values(
        RefusalCase{"Colours", "262 S 2\n277 S 3\n258 S 16 16 16\n339 S 1 1 1",
                    "colour images are not read (3 values a pixel)"},
        RefusalCase{"Transparency", "277 S 2\n258 S 16 16\n339 S 1 1\n338 S 2",
                    "images with transparency are not read (2 values a pixel)"},
        RefusalCase{"Float24", "258 S 24\n339 S 3", "24-bit floating-point numbers are not read"},
        RefusalCase{"Integer24", "258 S 24", "24-bit integers are not read"},
        RefusalCase{"Signed12", "258 S 12\n339 S 2", "12-bit signed integers are not read"},
        RefusalCase{"Complex", "258 S 32\n339 S 6", "complex numbers are not read"},
        RefusalCase{"UnknownCompression", "259 S 777", "compression number 777 is not read"},
        RefusalCase{"OldNextCompression", "259 S 32766\n258 S 16", "strip 1 of 1"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Damaged, TiffRefusal,
    testing::Values(
        RefusalCase{"NoWidth", "256 -", "directory"}, RefusalCase{"NoHeight", "257 -", "directory"},
        RefusalCase{"WidthZero", "256 L 0", "is damaged (Computed scanline size is zero)"},
        RefusalCase{"HeightZero", "257 L 0", "is damaged (Cannot handle zero number of strips)"},
        RefusalCase{"HugeWidth", "256 L 4294967295", "4294967295"},
        RefusalCase{"HugePage", "256 L 2000000000\n257 L 2000000000\n278 L 2000000000",
                    "2000000000 x 2000000000 pixels of 16 bits can't be in a file of"},
        RefusalCase{"BombBeyondDeflate", "256 L 60000\n257 L 60000\n259 S 8\n278 L 60000",
                    "60000 x 60000 pixels of 16 bits can't be in a file of"},
        RefusalCase{"HugeTile",
                    "322 L 1000000000\n323 L 1000000000\n273 -\n279 -\n324 L 8\n325 L 12",
                    "1000000000 x 1000000000 pixels"},
        RefusalCase{"NoOffsets", "273 -", ""}, RefusalCase{"OffsetZero", "273 L 0", "strip 1 of 1"},
        RefusalCase{"OffsetBeyondTheEnd", "273 L 1000000", "strip 1 of 1"},
        RefusalCase{"SecondStripCut", "273 L 8 14\n278 L 1\n279 L 6 4",
                    "strip 2 of 2 has 4 of 6 bytes"},
        RefusalCase{"SecondStripMissing", "273 L 8 0\n278 L 1\n279 L 6 0",
                    "strip 2 of 2 is missing"},
        RefusalCase{"SecondStripBeyondTheEnd", "273 L 8 100000\n278 L 1\n279 L 6 6",
                    "the file ends in strip 2 of 2, after 0 of its 6 bytes"},
        RefusalCase{"FewerStripsThanRows", "278 L 1\n257 L 2", "strip 2 of 2"},
        RefusalCase{"DataThatAreNoDeflate", "259 S 8", "strip 1 of 1 is damaged or cut ("},
        RefusalCase{"DataThatAreNoLzw", "259 S 5", "strip 1 of 1 is damaged or cut ("},
        RefusalCase{"DataThatAreNoPackBits", "259 S 32773", "strip 1 of 1 is damaged or cut ("}),
    [](const auto& row) { return row.param.name; });

TEST(TiffDamage, OtherFilesAreNotMine)
{
    for (const char* bytes : {"", "I", "II", "II*", "IIRO", "###CBF: VERSION", "MM*"})
        EXPECT_FALSE(openBytes(bytes)) << bytes;
}

TEST(TiffDamage, AHeadAloneIsAFailure)
{
    EXPECT_THAT(failureOf(std::string("II*\0", 4)),
                HasSubstr("the file cannot be opened (Cannot read TIFF header): /data"));
    EXPECT_THAT(failureOf(TiffBuilder().bytes()), HasSubstr("the file holds no image: /data"));
    EXPECT_THAT(failureOf(TiffBuilder(true, true).bytes()), HasSubstr("the file holds no image"));
}

/// Small files of each kind: pixels before and behind the directory, strips, tiles, Deflate.
std::vector<std::string> smallFiles()
{
    std::vector<std::string> files = {tiffOf(3, SixPixels, "270 A # Exposure_time 0.5 s\\0"),
                                      tiffOf(3, SixPixels, "", true, true),
                                      tiffOf(3, SixPixels, "273 L 8 14\n278 L 1\n279 L 6 6"),
                                      tiffOf(2, std::vector<std::uint32_t>{1, 2, ~0u, 4}, "339 -")};
    TiffBuilder deflate;
    const std::string packed = zlibPacked(std::string(600, 'x'));
    deflate.page(tags(30, 10, 16, 1, deflate.data(packed), packed.size()) + "259 S 8");
    files.push_back(deflate.bytes());
    TiffBuilder tiles(true);
    std::ostringstream tiled;
    tiled << "273 -\n278 -\n279 -\n322 L 16\n323 L 16\n324 L " << tiles.data(std::string(512, 'y'))
          << ' ' << tiles.data(std::string(512, 'z')) << "\n325 L 512 512";
    tiles.page(tags(20, 10, 16, 1, 0, 0) + tiled.str());
    tiles.page(tags(20, 10, 16, 1, 0, 0) + tiled.str());
    files.push_back(tiles.bytes());
    return files;
}

TEST(TiffDamage, EveryCutIsAFailure)
{
    for (const std::string& whole : smallFiles()) {
        ASSERT_EQ(failureOf(whole), "no failure");
        for (std::size_t size = 4; size < whole.size(); ++size)
            ASSERT_NE(failureOf(whole.substr(0, size)), "no failure")
                << size << " of " << whole.size();
    }
}

TEST(TiffDamage, EveryChangedByteIsReadOrRefused)
{
    testing::internal::CaptureStderr();
    for (const std::string& whole : smallFiles())
        for (std::size_t at = 0; at < whole.size(); ++at)
            for (const int change : {0x01, 0x80, 0xff, static_cast<int>(whole[at])}) {
                std::string damaged = whole;
                damaged[at] = static_cast<char>(damaged[at] ^ change);
                failureOf(damaged);  // whatever it says: no crash, no other exception
            }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
