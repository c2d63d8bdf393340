// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// CBF, TIFF and EDF files that want to fill the memory or never end; what each format says of its
// damage is in its own tests.
#include "tests/imagelib/io/formats/tiff/TiffBuilder.h"
#include "tests/imagelib/io/hostile/HostileFile.h"
#include "tests/support/Packed.h"

namespace tarvik::tests {
namespace {

/// A file that announces a size, and has twelve bytes of pixels.
std::string cbf(const std::string& width, const std::string& height)
{
    return "###CBF: VERSION 1.5\r\n--CIF-BINARY-FORMAT-SECTION--\r\n"
           "Content-Type: application/octet-stream; conversions=\"x-CBF_BYTE_OFFSET\"\r\n"
           "X-Binary-Size: 12\r\nX-Binary-Element-Type: \"signed 32-bit integer\"\r\n"
           "X-Binary-Size-Fastest-Dimension: " +
           width + "\r\nX-Binary-Size-Second-Dimension: " + height + "\r\n\r\n\x0c\x1a\x04\xd5" +
           std::string(12, '\1') + "\r\n--CIF-BINARY-FORMAT-SECTION----\r\n";
}

std::string edf(const std::string& width, const std::string& height)
{
    return "{\nDataType = UnsignedShort ;\nDim_1 = " + width + " ;\nDim_2 = " + height + " ;\n}\n" +
           std::string(12, '\1');
}

/// The tags of a page of twelve bytes in one strip; `more` replaces and adds.
std::string page(TiffBuilder& file, const std::string& width, const std::string& height,
                 const std::string& more = {})
{
    const auto offset = std::to_string(file.data(std::string(12, '\1')));
    return "256 L " + width + "\n257 L " + height + "\n258 S 16\n259 S 1\n262 S 1\n273 L " +
           offset + "\n277 S 1\n278 L " + height + "\n279 L 12\n" + more;
}

std::string tiff(const std::string& width, const std::string& height)
{
    TiffBuilder file;
    return file.page(page(file, width, height)).bytes();
}

}  // namespace

TEST(Hostile, SizesBeyondTheFile)
{
    const TempFolder folder;
    for (const auto make : {cbf, edf, tiff}) {
        expectReadable(folder.write("size", make("3", "2")));
        for (const char* side : {"65536", "30000", "2000000000"})
            expectFailure(folder.write("size", make(side, side)), "");
    }
}

TEST(Hostile, FilesThatUnpackToMoreThanTheMachineHas)
{
    // Two megabytes that stand for gigabytes.
    const TempFolder folder;
    const std::string member = gzipPacked(std::string(4 << 20, '\0'));
    std::string bomb;
    while (bomb.size() < std::size_t(2) << 20)
        bomb += member;
    expectFailure(folder.write("bomb.cbf.packed", bomb), "unpack to more than");

    // What is behind the last pixel of a strip is padding, and never unpacked.
    TiffBuilder file;
    const std::string strip = zlibPacked(std::string(8 << 20, '\0'));
    const std::string tags = "259 S 8\n273 L " + std::to_string(file.data(strip)) + "\n279 L " +
                             std::to_string(strip.size());
    file.page(page(file, "3", "2", tags));
    expectReadable(folder.write("bomb.tif", file.bytes()));
}

TEST(Hostile, HeadersWithoutEnd)
{
    const TempFolder folder;
    expectFailure(folder.write("open.edf", "{\n" + std::string(32 << 20, ' ')), "");
    std::string keys = "{\n";
    while (keys.size() < std::size_t(8) << 20)
        keys += "key" + std::to_string(keys.size()) + " = value ;\n";
    expectFailure(folder.write("keys.edf", keys), "");
    // A million headers and not one image.
    std::string headers;
    while (headers.size() < std::size_t(4) << 20)
        headers += "{\n}\n";
    expectFailure(folder.write("headers.edf", headers), "");
}

TEST(Hostile, ThousandsOfDirectoriesOfOneImage)
{
    const TempFolder folder;
    TiffBuilder file;
    const std::string table = page(file, "3", "2");
    for (int i = 0; i < 20000; ++i)
        file.page(table);
    expectReadable(folder.write("many.tif", file.bytes()));
}

TEST(Hostile, ALinkToNoDirectoryLosesNothing)
{
    const TempFolder folder;
    for (const std::uint64_t link : {std::uint64_t(1), std::uint64_t(9), std::uint64_t(100000)}) {
        TiffBuilder file;
        file.page(page(file, "3", "2")).linkTo(link);
        folder.write("x_1.tif", file.bytes());
        folder.write("x_2.tif", tiff("3", "2"));
        // The file stays a member of its numbered set: the junk is no second image.
        MImageSeries series(0);
        testing::internal::CaptureStderr();
        EXPECT_EQ(series.open(folder / "x_1.tif"), 1);
        EXPECT_THAT(testing::internal::GetCapturedStderr(),
                    HasSubstr("WARNING: the first image alone is shown: TIFF: page 2 can't be"));
        EXPECT_EQ(series.last(), 2);
        EXPECT_EQ(series.at(1).size(), 6u);
    }
}

}  // namespace tarvik::tests
