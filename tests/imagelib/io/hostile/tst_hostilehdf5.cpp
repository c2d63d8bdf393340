// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// HDF5 files that are cut, lie about themselves or lead astray.
#include "tests/imagelib/io/hostile/HostileFile.h"

#include <algorithm>
#include <random>

namespace tarvik::tests {

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
