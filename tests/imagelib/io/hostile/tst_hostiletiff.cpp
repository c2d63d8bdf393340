// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// TIFF files whose directories are endless, crossed, cut or lie; single tags are in tst_tiffdamage.
#include "tests/imagelib/io/formats/tiff/TiffBuilder.h"
#include "tests/imagelib/io/hostile/HostileFile.h"
#include "tests/support/Packed.h"
#include "tests/support/TempFolder.h"

namespace tarvik::tests {

namespace {

/// The tags of a page of 16-bit pixels in one strip.
std::string page(TiffBuilder& file, std::uint64_t width = 4, std::uint64_t height = 3,
                 const std::string& more = {})
{
    const std::string pixels(24, '\1');
    std::ostringstream table;
    table << "256 L " << width << "\n257 L " << height << "\n258 S 16\n259 S 1\n262 S 1\n273 L "
          << file.data(pixels) << "\n277 S 1\n278 L " << height << "\n279 L " << pixels.size()
          << '\n'
          << more;
    return table.str();
}

TiffBuilder goodFile(bool bigTiff)
{
    TiffBuilder file(false, bigTiff);
    return file.page(page(file));
}

}  // namespace

TEST(HostileTiff, DirectoriesThatGoInCircles)
{
    const TempFolder folder;
    for (const bool bigTiff : {false, true}) {
        TiffBuilder itself = goodFile(bigTiff);
        itself.linkTo(itself.lastDirectory());
        expectFailure(folder.write("itself.tif", itself.bytes()),
                      "page 2 can't be found: the chain of directories returns to byte");

        TiffBuilder crossed = goodFile(bigTiff);
        const std::uint64_t first = crossed.lastDirectory();
        crossed.page(page(crossed));
        crossed.linkTo(first);
        expectFailure(folder.write("crossed.tif", crossed.bytes()),
                      "page 3 can't be found: the chain of directories returns to byte");
    }
}

TEST(HostileTiff, ALinkToNoDirectoryLosesNothing)
{
    const TempFolder folder;
    for (const std::uint64_t link : {std::uint64_t(1), std::uint64_t(9), std::uint64_t(100000)}) {
        TiffBuilder file = goodFile(false);
        file.linkTo(link);
        folder.write("x_1.tif", file.bytes());
        folder.write("x_2.tif", goodFile(false).bytes());
        // The file stays a member of its numbered set: the junk is no second image.
        morvend::imglib::MImageSeries series(0);
        EXPECT_EQ(series.open(folder / "x_1.tif"), 1);
        EXPECT_EQ(series.last(), 2);
        EXPECT_EQ(series.at(1).size(), 12u);
    }
}

TEST(HostileTiff, ThousandsOfDirectoriesOfOneImage)
{
    const TempFolder folder;
    TiffBuilder file;
    const std::string table = page(file);
    for (int i = 0; i < 60000; ++i)
        file.page(table);
    expectReadable(folder.write("many.tif", file.bytes()));
}

TEST(HostileTiff, EveryCutIsAFailure)
{
    const TempFolder folder;
    for (const bool bigTiff : {false, true}) {
        const std::string whole = goodFile(bigTiff).bytes();
        for (std::size_t size = 0; size + 8 < whole.size(); ++size) {
            SCOPED_TRACE(size);
            expectFailure(folder.write("cut.tif", whole.substr(0, size)), "");
        }
    }
}

TEST(HostileTiff, SizesBeyondTheFile)
{
    const TempFolder folder;
    const std::pair<const char*, std::string> cases[] = {
        {"65536 x 65536 pixels of 16 bits can't be in a file",
         "256 L 65536\n257 L 65536\n278 L 65536"},
        {"the directory at byte 32 is damaged",
         "256 L 4294967295\n257 L 4294967295\n278 L 4294967295"},
        {"65537 x 65535 pixels of 16 bits can't be in a file",
         "256 L 65537\n257 L 65535\n278 L 65535"},
        {"30000 x 30000 pixels of 16 bits can't be in a file",
         "256 L 30000\n257 L 30000\n278 L 30000"},
        {"the file ends in strip 1 of 1, after 0 of its 24 bytes",
         "273 L 4294967295\n279 L 4294967295"},
        {"4 x 1000000 pixels of 16 bits can't be in a file", "257 L 1000000\n278 L 1"},
        {"65535 values a pixel", "277 S 65535"},
        {"65535-bit integers are not read", "258 S 65535"},
    };
    for (const auto& [text, tags] : cases) {
        SCOPED_TRACE(tags);
        TiffBuilder file;
        file.page(page(file, 4, 3, tags));
        const std::string path = folder.write("size.tif", file.bytes());
        expectFailure(path, text);
    }
}

TEST(HostileTiff, StripsThatUnpackToMore)
{
    const TempFolder folder;
    TiffBuilder file;
    const std::string bomb = zlibPacked(std::string(std::size_t(64) << 20, '\0'));
    std::ostringstream tags;
    tags << "259 S 8\n273 L " << file.data(bomb) << "\n279 L " << bomb.size();
    file.page(page(file, 4, 3, tags.str()));
    // What is behind the last pixel is padding, and never unpacked.
    expectReadable(folder.write("bomb.tif", file.bytes()));
}

}  // namespace tarvik::tests
