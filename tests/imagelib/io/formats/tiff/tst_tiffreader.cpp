// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pages, headers and damage of TIFF files, from bytes written out by hand, and headers of written
// ones; their pixels are compared in tst_peers.
#include "imagelib/io/formats/tiff/TiffReader.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/imagelib/io/formats/tiff/TiffBuilder.h"
#include "tests/support/Packed.h"

#include <tiffio.h>

#include <cmath>

namespace tarvik::tests {

using namespace std::string_literals;

namespace {

std::string failureOfBytes(const std::string& bytes) { return readingFailure(openTiff, bytes); }

MImage firstFrame(const std::string& bytes) { return openBytes(openTiff, bytes)->frame(0); }

/// Tags of a plain page of one strip.
std::string tags(int width, int height, std::size_t bits, int format, std::uint64_t offset,
                 std::size_t bytes)
{
    std::ostringstream table;
    table << "256 L " << width << "\n257 L " << height << "\n258 S " << bits
          << "\n259 S 1\n262 S 1\n273 L " << offset << "\n277 S 1\n278 L " << height << "\n279 L "
          << bytes << "\n339 S " << format << '\n';
    return table.str();
}

/// Adds a page of one pixel.
void addPixel(TiffBuilder& builder, char value, const std::string& more = {})
{
    builder.page(tags(1, 1, 8, 1, builder.data(std::string(1, value)), 1) + more);
}

/// A file of one page of unsigned integers; `more` are tags that replace or add.
template <class T>
std::string tiffOf(int width, const std::vector<T>& pixels, const std::string& more = {},
                   bool bigEndian = false, bool bigTiff = false)
{
    TiffBuilder builder(bigEndian, bigTiff);
    const std::string data = builder.values(pixels);
    const std::uint64_t offset = builder.data(data);
    builder.page(tags(width, static_cast<int>(pixels.size()) / width, 8 * sizeof(T), 1, offset,
                      data.size()) +
                 more);
    return builder.bytes();
}

const std::vector<std::uint16_t> SixPixels = {1, 2, 3, 4, 5, 65535};
constexpr const char* SixShown = "UINT16 3x2: 1 2 3 4 5 65535";

/// A text tag as libtiff reads it.
std::string textTag(const std::string& path, std::uint32_t tag)
{
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    const char* text = nullptr;
    const std::string result = TIFFGetField(tiff, tag, &text) ? text : "absent";
    TIFFClose(tiff);
    return result;
}

}  // namespace

TEST(TiffTags, LeaveTheCountsAlone)
{
    for (const char* tags : {"262 S 0",
                             "262 S 3",
                             "262 -",
                             "262 S 34892",  // colours
                             "274 S 6",
                             "274 S 4",  // orientation
                             "339 -",
                             "339 S 4",
                             "339 S 1 1",  // format of the samples
                             "278 -",
                             "278 L 4294967295",
                             "278 L 100",  // rows of a strip
                             "279 -",
                             "279 L 0",
                             "279 L 4",
                             "279 L 4000000000",  // bytes of a strip
                             "277 -",
                             "259 -",
                             "284 S 2",
                             "65000 L",                          // others
                             "273 L 8 14\n278 L 1\n279 L 6 6"})  // two strips
        EXPECT_EQ(shown(firstFrame(tiffOf(3, SixPixels, tags))), SixShown) << tags;
}

TEST(TiffTags, MayPlaceStripsInAnyOrder)
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
        EXPECT_EQ(shown(firstFrame(builder.bytes())), "UINT16 2x3: 1 2 3 4 5 65535");
    }
}

TEST(TiffSign, IsTakenFromTheFlagsWhenItIsNotTold)
{
    const struct {
        std::vector<std::uint32_t> pixels;
        const char *format, *shown;
    } rows[] = {{{5, ~0u}, "339 -", "INT32 2x1: 5 -1"},
                {{~1u, 7}, "339 -", "INT32 2x1: -2 7"},
                {{5, ~0u}, "339 S 4", "INT32 2x1: 5 -1"},
                {{5, 2147483647}, "339 -", "UINT32 2x1: 5 2147483647"},
                {{2147483648u, ~0u}, "339 -", "UINT32 2x1: 2147483648 4294967295"},
                {{~2u, ~0u}, "339 -", "UINT32 2x1: 4294967293 4294967295"},
                {{5, ~0u}, "339 S 1", "UINT32 2x1: 5 4294967295"},
                {{5, ~0u}, "339 S 2", "INT32 2x1: 5 -1"}};
    for (const auto& row : rows)
        for (const bool bigEndian : {false, true})
            EXPECT_EQ(shown(firstFrame(tiffOf(2, row.pixels, row.format, bigEndian))), row.shown);
    // On large pages too it depends on the last pixel.
    std::vector<std::uint32_t> pixels(300000, 1);
    EXPECT_EQ(firstFrame(tiffOf(1000, pixels, "339 -")).type(), datatypes::UINT);
    pixels.back() = ~0u;
    EXPECT_EQ(firstFrame(tiffOf(1000, pixels, "339 -")).type(), datatypes::INT);
    pixels.front() = 3000000000u;
    EXPECT_EQ(firstFrame(tiffOf(1000, pixels, "339 -")).type(), datatypes::UINT);
}

TEST(TiffNarrow, ValuesAreWidened)
{
    const struct {
        int width;
        std::size_t bits;
        int format;
        std::string data;
        const char* shown;
    } rows[] = {{3, 1, 1, "\xa0\x40"s, "UINT8 3x2: 1 0 1 0 1 0"},
                {3, 2, 1, "\x1b\xe4"s, "UINT8 3x2: 0 1 2 3 2 1"},
                {3, 4, 1, "\x12\x30\xfe\xd0"s, "UINT8 3x2: 1 2 3 15 14 13"},
                {1, 10, 1, "\xff\xc0\x00\x40"s, "UINT16 1x2: 1023 1"},
                {2, 12, 1, "\xff\xf0\x01\x12\x34\x56"s, "UINT16 2x2: 4095 1 291 1110"},
                {4, 16, 3, "\x3c\x00\xc0\x00\x7b\xff\x00\x01\x80\x00\x7c\x00\xfc\x00\x04\x00"s,
                 "FLOAT32 4x2: 1 -2 65504 5.96046e-08 -0 inf -inf 6.10352e-05"}};
    for (const auto& row : rows) {
        TiffBuilder builder(true);
        const auto offset = builder.data(row.data);
        builder.page(tags(row.width, 2, row.bits, row.format, offset, row.data.size()));
        EXPECT_EQ(shown(firstFrame(builder.bytes())), row.shown);
    }
    const MImage nan = firstFrame(tiffOf(1, std::vector<std::uint16_t>{0x7e01}, "339 S 3"));
    EXPECT_TRUE(std::isnan(nan.pixel(0, 0, 0.0f)));
}

TEST(TiffPages, AreFramesAndPreviewsAreNot)
{
    for (const bool bigTiff : {false, true}) {
        TiffBuilder builder(false, bigTiff);
        // A preview and a transparency mask are none; one of several pages is.
        char value = 1;
        for (const char* kind : {"254 L 0", "254 L 1", "254 L 2", "254 L 4", ""})
            addPixel(builder, value++, kind);
        const auto file = openBytes(openTiff, builder.bytes());
        EXPECT_EQ(file->frameCount(), 3u);
        EXPECT_EQ(shown(file->frame(2)), "UINT8 1x1: 5");
        EXPECT_EQ(shown(file->frame(0)), "UINT8 1x1: 1");
        EXPECT_EQ(shown(file->frame(1)), "UINT8 1x1: 3");
        EXPECT_THROW(file->frame(3), MOutOfRangeException);
    }
}

TEST(TiffPages, ABrokenChainIsOneMoreFrameThatSaysWhy)
{
    for (const bool bigTiff : {false, true}) {
        TiffBuilder builder(false, bigTiff);
        addPixel(builder, 'a');
        const std::uint64_t first = builder.lastDirectory();
        addPixel(builder, 'b');
        const std::uint64_t last = builder.lastDirectory();
        const std::size_t count = bigTiff ? 8 : 2;
        const std::uint64_t none = builder.data(builder.number(0, count));
        const std::uint64_t cut = builder.data(builder.number(16, count) + "entries");
        for (const auto& [link, text] :
             {std::pair(last, "page 3 can't be found: the chain of directories returns to byte"),
              {first, "page 3 can't be found: the chain of directories returns to byte"},
              {1000000, "the directory at byte 1000000 lies beyond the end of the file: /data"},
              {cut, "is cut off by the end of the file"},
              {none, "can't have 0 entries"}}) {
            builder.linkTo(link);
            const auto file = openBytes(openTiff, builder.bytes());
            EXPECT_EQ(file->frameCount(), 3u);
            EXPECT_EQ(shown(file->frame(1)), "UINT8 1x1: 98");
            EXPECT_THAT(failureOfBytes(builder.bytes()), HasSubstr(text));
        }
    }
}

TEST(TiffPages, AppearWhenAWriterAddsThem)
{
    const TempFolder folder;
    TiffBuilder builder;
    addPixel(builder, 'a');
    const std::string path = folder.write("x.tif", builder.bytes());
    const auto file = openTiff(ByteSource::open(path));
    EXPECT_EQ(file->frameCount(), 1u);
    addPixel(builder, 'b');
    folder.write("x.tif", builder.bytes());
    file->update();
    EXPECT_EQ(file->frameCount(), 2u);
    EXPECT_EQ(shown(file->frame(1)), "UINT8 1x1: 98");
    EXPECT_EQ(shown(file->frame(0)), "UINT8 1x1: 97");
    EXPECT_EQ(file->framePath(1), path);
}

TEST(TiffHeader, ComesFromTheDescription)
{
    const std::string more =
        "270 A # Pixel_size 172e-6 m x 172e-6 m\\r\\n# Exposure_time 0.5 s\\r\\n\\0"
        "# Wavelength 1.25 A\\r\\n# Detector: One, S/N 7\\0\\0\\0\n"
        "272 A Other\\0\n306 A 2020:01:02 03:04:05\\0";
    const Header header = firstFrame(tiffOf(3, SixPixels, more)).optionalData();
    EXPECT_EQ(shown(header),
              "wavelength=1.25;x_pixel_size=0.000172;y_pixel_size=0.000172;count_time=0.5;"
              "data_collection_date=2020:01:02 03:04:05;description=One;detector_number=7;");
    EXPECT_EQ(*header.rawHeader(), "# Pixel_size 172e-6 m x 172e-6 m\r\n# Exposure_time 0.5 s\r\n\n"
                                   "# Wavelength 1.25 A\r\n# Detector: One, S/N 7");
}

TEST(TiffHeader, MayBeShortElsewhereOrAbsent)
{
    const auto header = [](const char* more) {
        return firstFrame(tiffOf(3, SixPixels, more)).optionalData();
    };
    EXPECT_EQ(*header("270 A abc").rawHeader(), "abc");
    EXPECT_EQ(shown(header("272 A Model\\0")), "description=Model;");
    EXPECT_EQ(shown(header("272 A Large 6M, S/N 60-0114\\0")),
              "description=Large 6M;detector_number=60-0114;");
    EXPECT_FALSE(header("270 A \\0\\0").rawHeader());
    EXPECT_FALSE(header("").rawHeader());
    EXPECT_EQ(shown(header("")), "");
    EXPECT_EQ(shown(header("270 A # 2021-05-06T07:08:09\\0\n306 A 2020:01:02 03:04:05\\0")),
              "data_collection_date=2021-05-06T07:08:09;");
    // The text stands just before the directory; its entry may point far away.
    std::string bytes = tiffOf(3, SixPixels, "270 A # Exposure_time 0.5 s\\0");
    const std::size_t at = bytes.find("\x0e\x01\x02\0"s);
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at + 8, 4, "\xff\xff\xff\x7f");
    EXPECT_EQ(shown(firstFrame(bytes)), SixShown);
}

TEST(TiffDamage, IsToldWithReasonAndFile)
{
    testing::internal::CaptureStderr();
    for (const auto& row : rowsOf(R"(
262 S 2\n277 S 3\n258 S 16 16 16\n339 S 1 1 1 | colour images are not read (3 values a pixel)
277 S 2\n258 S 16 16\n339 S 1 1\n338 S 2 \
    | images with transparency are not read (2 values a pixel)
277 S 65535                                 | 65535 values a pixel
258 S 24\n339 S 3                           | 24-bit floating-point numbers are not read
258 S 24                                    | 24-bit integers are not read
258 S 65535                                 | 65535-bit integers are not read
258 S 12\n339 S 2                           | 12-bit signed integers are not read
258 S 32\n339 S 6                           | complex numbers are not read
259 S 777                                   | compression number 777 is not read
259 S 32766\n258 S 16                       | strip 1 of 1
256 -                                       | directory
257 -                                       | directory
256 L 0                                     | is damaged (libtiff: Computed scanline size is zero)
257 L 0                                     | is damaged (libtiff: Cannot handle zero number of strips)
256 L 4294967295                            | 4294967295
256 L 4294967295\n257 L 4294967295\n278 L 4294967295 | is damaged
256 L 2000000000\n257 L 2000000000\n278 L 2000000000 \
    | 2000000000 x 2000000000 pixels of 16 bits can't be in a file of
256 L 65537\n257 L 65535\n278 L 65535       | 65537 x 65535 pixels of 16 bits can't be in a file of
256 L 60000\n257 L 60000\n259 S 8\n278 L 60000 \
    | 60000 x 60000 pixels of 16 bits can't be in a file of
257 L 1000000\n278 L 1                      | 3 x 1000000 pixels of 16 bits can't be in a file of
322 L 1000000000\n323 L 1000000000\n273 -\n279 -\n324 L 8\n325 L 12 \
    | 1000000000 x 1000000000 pixels
273 -                                       |
273 L 0                                     | strip 1 of 1
273 L 1000000                               | strip 1 of 1
273 L 4294967295\n279 L 4294967295          | the file ends in strip 1 of 1, after 0 of its 12 bytes
273 L 8 14\n278 L 1\n279 L 6 4              | strip 2 of 2 has 4 of 6 bytes
273 L 8 0\n278 L 1\n279 L 6 0               | strip 2 of 2 is missing
273 L 8 100000\n278 L 1\n279 L 6 6 | the file ends in strip 2 of 2, after 0 of its 6 bytes
278 L 1\n257 L 2                            | strip 2 of 2
259 S 8                                     | strip 1 of 1 is damaged or cut (libtiff: 
259 S 5                                     | strip 1 of 1 is damaged or cut (libtiff: 
259 S 32773                                 | strip 1 of 1 is damaged or cut (libtiff: 
)")) {
        const Bounds bounds(640);
        const std::string text =
            failureOfBytes(tiffOf(3, std::vector<std::uint16_t>{1, 2, 3, 4, 5, 6}, row.at(0)));
        EXPECT_THAT(text, StartsWith("TIFF: "));
        EXPECT_THAT(text, HasSubstr(row.at(1))) << row[0];
        EXPECT_THAT(text, EndsWith(": /data/x"));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(TiffDamage, OtherFilesAreNotMineAndAHeadAloneIsAFailure)
{
    for (const char* bytes : {"", "I", "II", "II*", "IIRO", "###CBF: VERSION", "MM*"})
        EXPECT_FALSE(openBytes(openTiff, bytes)) << bytes;
    EXPECT_THAT(
        failureOfBytes("II*\0"s),
        HasSubstr("the file is cut: it ends after 4 bytes (libtiff: Cannot read TIFF header)"));
    EXPECT_THAT(failureOfBytes(TiffBuilder().bytes()), HasSubstr("the file holds no image: /data"));
    EXPECT_THAT(failureOfBytes(TiffBuilder(true, true).bytes()),
                HasSubstr("the file holds no image"));
}

TEST(TiffDamage, EveryCutIsAFailure)
{
    // Pixels before and after the directory, strips, tiles, Deflate.
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

    testing::internal::CaptureStderr();
    for (const std::string& whole : files) {
        ASSERT_EQ(failureOfBytes(whole), "no failure");
        for (std::size_t at = 4; at < whole.size(); ++at)
            ASSERT_NE(failureOfBytes(whole.substr(0, at)), "no failure") << at;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(TiffWriter, KeepsTheHeader)
{
    const TempFolder folder;
    MImage image(3, 2, 1);
    auto& header = image.optionalData();
    header.set_wavelength(0.987654f);
    header.set_beam_center_x(1.25f);
    header.set_beam_center_y(-3.5f);
    header.set_sensor_thickness(0.00045f);
    header.set_saturation_value(123456);
    header.set_description("Model 5");
    header.set_detector_number("007");
    header.set_data_collection_date("2024-03-05T06:07:08.912");
    const std::string path = folder / "x.tif";
    writeTiff(image, path);
    EXPECT_EQ(shown(openTiff(ByteSource::open(path))->frame(0).optionalData()), shown(header));
    EXPECT_EQ(textTag(path, TIFFTAG_DATETIME), "2024:03:05 06:07:08");
    EXPECT_EQ(textTag(path, TIFFTAG_MODEL), "Model 5");
}

TEST(TiffWriter, LeavesOutWhatIsNotKnown)
{
    const TempFolder folder;
    MImage image(3, 2, 1);
    writeTiff(image, folder / "x.tif");
    EXPECT_EQ(textTag(folder / "x.tif", TIFFTAG_MODEL), "absent");
    for (const char* date : {"yesterday", "2024/Mar/05 06:07:08", "2024-03-05", ""}) {
        image.optionalData().set_data_collection_date(std::string(date));
        writeTiff(image, folder / "x.tif");
        EXPECT_EQ(textTag(folder / "x.tif", TIFFTAG_DATETIME), "absent") << date;
    }
}

TEST(TiffWriter, FailsWithoutATrace)
{
    const TempFolder folder;
    EXPECT_THROW(writeTiff(MImage(), folder / "x.tif"), MBadParameterException);
    EXPECT_THROW(writeTiff(MImage(3, 2, 1), folder / "none/x.tif"), MNoFileAccessException);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace tarvik::tests
