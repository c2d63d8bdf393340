// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files that want to fill the memory, never end or lead astray; what CBF, TIFF and EDF say of
// damage is in the tests of the formats.
#include "imagelib/io/MImageSeries.h"
#include "imagelib/io/formats/base/ByteSource.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/imagelib/io/formats/tiff/TiffBuilder.h"
#include "tests/support/Packed.h"

#include <algorithm>
#include <random>

namespace tarvik::tests {

namespace {

/// What came of the reading of a whole series.
struct Outcome {
    std::string failure;  ///< or "no failure" when every image that was asked for could be read
    int images = 0;       ///< that could be read
};

/// Asks for the image that the path names, the first ones, the middle one and the last one, and
/// expects that to take little memory beyond the image, whatever the file says.
Outcome outcomeOf(const std::string& path, std::size_t mebibytes = 640)
{
    image::PixelBuffer::trimPool();
    const Bounds bounds(mebibytes);
    Outcome outcome;
    outcome.failure = failureOf([&] {
        MImageSeries series(0);
        const int opened = series.open(path);
        for (const int number :
             {opened, series.first(), series.first() + 1,
              series.first() + (series.last() - series.first()) / 2, series.last()})
            if (number >= series.first() && number <= series.last() && !series.at(number).empty())
                ++outcome.images;
        series.update();
        series.pathToImage(opened);
    });
    return outcome;
}

/// Reads a file that must fail, with a sentence that holds a text and ends in its path, or that of
/// another file in its folder which is at fault.
void expectFailure(const std::string& path, const std::string& text, std::size_t mebibytes = 640)
{
    SCOPED_TRACE(path);
    const Outcome outcome = outcomeOf(path, mebibytes);
    EXPECT_THAT(outcome.failure, HasSubstr(": " + path.substr(0, path.rfind('/') + 1)));
    EXPECT_THAT(outcome.failure, HasSubstr(text));
}

/// Reads a file that can be read in spite of all.
void expectReadable(const std::string& path)
{
    SCOPED_TRACE(path);
    const Outcome outcome = outcomeOf(path);
    EXPECT_EQ(outcome.failure, "no failure");
    EXPECT_GT(outcome.images, 0);
}

/// The tags of a page of 3 x 2 pixels in one strip; `more` replaces and adds.
std::string page(TiffBuilder& file, const std::string& more = {})
{
    const auto offset = std::to_string(file.data(std::string(12, '\1')));
    return "256 L 3\n257 L 2\n258 S 16\n259 S 1\n262 S 1\n273 L " + offset +
           "\n277 S 1\n278 L 2\n279 L 12\n" + more;
}

}  // namespace

TEST(Hostile, FilesThatUnpackToMoreThanTheMachineHas)
{
    // Two megabytes that stand for gigabytes, after the head of an image or of none.
    const TempFolder folder;
    const std::string zeros(std::size_t(4) << 20, '\0');
    const auto bomb = [&](const std::string& head, auto pack) {
        const std::string member = pack(zeros);
        std::string bytes = pack(head + zeros);
        while (bytes.size() < std::size_t(2) << 20)
            bytes += member;
        return folder.write("bomb.packed", bytes);
    };
    expectFailure(bomb("", &gzipPacked), "Unknown format", 8);
    expectFailure(bomb("", &bzip2Packed), "Unknown format", 8);
    expectFailure(bomb("II*\n", &gzipPacked), "Unknown format", 8);
    const std::string size = "Dim_1 = 3 ;\nDim_2 = 2 ;\nDataType = UnsignedShort ;\n";
    expectFailure(bomb("{\n" + size + "}\n", &gzipPacked), "unpack to more than 13", 400);
    expectFailure(bomb("###CBF\n--CIF-BINARY-FORMAT-SECTION--\n"
                       "X-Binary-Size-Fastest-Dimension: 3\n"
                       "X-Binary-Size-Second-Dimension: 2\n\n\x0c\x1a\x04\xd5",
                       &gzipPacked),
                  "unpack to more than 13", 400);

    // An image may really be that empty, and so may be each one of a series.
    std::string frame = "{\nDim_1 = 1000 ;\nDim_2 = 500 ;\nDataType = Unsigned64 ;\n";
    frame += std::string(510 - frame.size(), ' ') + "}\n" + std::string(4'000'000, '\0');
    const std::string frames = gzipPacked(frame + frame + frame);
    ASSERT_LT(frames.size() * ByteSource::BestRatio, frame.size());
    expectReadable(folder.write("frames.edf.gz", frames));
    const std::string empty = "{\nDim_1 = 5000 ;\nDim_2 = 5400 ;\nDataType = Unsigned64 ;\n}\n" +
                              std::string(std::size_t(216'000'000), '\0');
    expectReadable(folder.write("empty.edf.gz", gzipPacked(empty)));

    // What follows the last pixel of a strip is padding, and never unpacked.
    TiffBuilder file;
    const std::string strip = zlibPacked(std::string(8 << 20, '\0'));
    const std::string tags = "259 S 8\n273 L " + std::to_string(file.data(strip)) + "\n279 L " +
                             std::to_string(strip.size());
    file.page(page(file, tags));
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
    const std::string table = page(file);
    for (int i = 0; i < 20000; ++i)
        file.page(table);
    expectReadable(folder.write("many.tif", file.bytes()));
}

TEST(Hostile, ALinkToNoDirectoryLosesNothing)
{
    const TempFolder folder;
    for (const std::uint64_t link : {std::uint64_t(1), std::uint64_t(9), std::uint64_t(100000)}) {
        TiffBuilder file;
        file.page(page(file)).linkTo(link);
        folder.write("x_1.tif", file.bytes());
        folder.write("x_2.tif", file.bytes());
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

class HostileHdf5 : public testing::Test {
public:
    static void SetUpTestSuite()
    {
        _folder = std::make_unique<TempFolder>();
        runPython("hostile/make_hostile.py", "'" + _folder->path() + "'");
    }
    static void TearDownTestSuite() { _folder.reset(); }
    static std::string path(const std::string& name) { return *_folder / (name + ".h5"); }
    static const TempFolder& folder() { return *_folder; }

private:
    static inline std::unique_ptr<TempFolder> _folder;
};

TEST_F(HostileHdf5, FilesThatLieOrLeadAstray)
{
    for (const auto& row : rowsOf(R"(
soft_dangling             | the link /entry/data/data leads to /nowhere, which does not exist
soft_loop                 | the links from /entry/data/data go in a circle
soft_itself               | the links from /entry/data/data go in a circle
external_dangling         | nowhere.h5 does not exist
external_itself           | the links from /entry/data/data go in a circle
external_a                | the links from /entry/data/data go in a circle
external_folder           | does not exist
external_pipe             | pipe does not exist
blocks_missing            | none of the 2000 data files exists, the first is
group_in_itself           | the file holds no images
default_itself            | the file holds no images
rank_1                    | the file holds no images
rank_5                    | the file holds no images
scalar                    | the file holds no images
null_space                | the file holds no images
type_text                 | the file holds no images
type_compound             | the file holds no images
type_opaque               | the file holds no images
type_reference            | the file holds no images
type_vlen                 | the file holds no images
no_frames                 | the file holds no frames yet
no_rows                   | has frames of 5 x 0 pixels
product_32                | has frames of 65536 x 65536 pixels
product_wraps             | has frames of 65535 x 65537 pixels
columns_64                | has frames of 4611686018427387904 x 1 pixels
frame_of_gigabytes        | announces frames of 12800000000 bytes, more than the file of
chunks_of_one_pixel       | lies in 1000000 chunks of 1 x 1 pixels, too many
plain_chunks_of_one_pixel | lies in 1000000 chunks of 1 x 1 pixels, too many
chunk_one_byte            | the chunk has 1 bytes, fewer than its head
chunk_short_head          | the chunk has 7 bytes, fewer than its head
chunk_head_alone          | block 0 of the chunk is missing
chunk_block_beyond        | block 0 of the chunk ends after 50 of 4294967280 bytes
chunk_other_size          | announces 1099511627776 instead of 16384 bytes
chunk_wrapped_size        | announces 18446744073709551612 instead of 16384 bytes
chunk_noise               | block 0 of the chunk is damaged (LZ4)
chunk_lz4_noise           | block 0 of the chunk is damaged (LZ4)
chunk_values_odd          | frame 1 of /entry/data/data can't be read
chunk_library_bomb        | filter returned failure
chunk_library_bomb_2      | filter returned failure
chunk_unknown             | filter 31999 is not installed
chunk_plain_short         | frame 1 of /entry/data/data can't be read
chunk_gzip                | frame 1 of /entry/data/data is damaged: the deflate stream is damaged
chunk_gzip_more           | the deflate stream unpacks to more than 16384 bytes
chunk_gzip_less           | the deflate stream unpacks to 1024 instead of 16384 bytes
piped                     | pipe, which is no regular file
virtual_pipe              | pipe, which is no regular file
virtual_itself            | virtual data sets refer to each other without end
virtual_too_large         | does not fit the frames of /data
)")) {
        expectFailure(path(row.at(0)), row.at(1));
    }
}

TEST_F(HostileHdf5, GoodImagesAmongBadThings)
{
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder().path()))
        if (entry.path().filename().string().starts_with("readable_")) {
            expectReadable(entry.path());
            ++files;
        }
    EXPECT_EQ(files, 11);
    MImageSeries series(0);
    series.open(path("readable_bomb_value"));
    EXPECT_FALSE(series.at(1).optionalData().detector_distance());
}

TEST_F(HostileHdf5, AMaskThatIsLeftOutIsTold)
{
    for (const auto& row : rowsOf(R"(
mask_shape  | is left out: it has 5 x 5 pixels, the images have 20 x 12
mask_rank_1 | is left out, because it can't be read
mask_rank_5 | is left out, because it can't be read
mask_text   | is left out, because it can't be read
mask_empty  | is left out, because it can't be read
mask_huge   | is left out, because it can't be read
mask_lost   | nowhere.h5
mask_three  | is the first of 3, for all 2 images
)")) {
        testing::internal::CaptureStderr();
        MImageSeries series(0);
        series.open(path(row[0]));
        const auto first = series.at(1);
        series.at(2);
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
        EXPECT_THAT(told, testing::StartsWith("WARNING: HDF5: the pixel mask "
                                              "/entry/instrument/detector/pixel_mask is "));
        EXPECT_THAT(told, HasSubstr(row.at(1)));
        EXPECT_THAT(told, testing::EndsWith(": " + path(row[0]) + "\n"));
        EXPECT_THAT(first.optionalData().rawHeader().value_or(""), testing::StartsWith(told));
        EXPECT_EQ(first.optionalData().pixel_mask().has_value(), row[0] == "mask_three");
    }
}

TEST_F(HostileHdf5, AMaskOfEachFrameIsTheFramesOwn)
{
    MImageSeries series(0);
    series.open(path("mask_of_frames"));
    for (const std::size_t number : {2u, 1u, 2u}) {
        const auto image = series.at(number);
        ASSERT_TRUE(image.optionalData().pixel_mask());
        EXPECT_EQ(image.optionalData().pixel_mask()->pixel<unsigned long long>(3, 3, 0), number);
    }
}

TEST_F(HostileHdf5, CutsAreFailures)
{
    std::minstd_rand random(1);
    for (const char* name : {"readable_whole_earliest", "readable_whole_latest"}) {
        const std::string whole = contentOf(path(name));
        // All that the library writes begins at a multiple of eight bytes.
        for (std::size_t size = 0; size < whole.size(); size += 8 * (1 + random() % 32)) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(size));
            const std::string cut = folder().write("cut.h5", whole.substr(0, size));
            EXPECT_THAT(outcomeOf(cut).failure, EndsWith(": " + cut));
        }
    }
}

}  // namespace tarvik::tests
