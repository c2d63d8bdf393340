// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// HDF5 files read by the process tarvik-reader, which is killed now and then.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageSeries.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/Processes.h"

#include <algorithm>
#include <boost/optional/optional_io.hpp>
#include <csignal>

namespace tarvik::tests {

namespace {

/// A series of five images with header and mask.
std::string writeMaster(const TempFolder& folder)
{
    MHdf5Writer writer(folder / "x_master.h5", 5, {}, MCompression::BITSHUFFLE_LZ4);
    for (int i = 0; i < 5; ++i) {
        MImage image(700, 500, static_cast<unsigned short>(100 + i));
        image.optionalData().set_wavelength(0.98f);
        image.optionalData().set_rotation_angle(0.5f * static_cast<float>(i));
        image.optionalData().set_pixel_mask(MImage(700, 500, 1u));
        writer.write(image);
    }
    return folder / "x_master.h5";
}

class Apart : public testing::Test {
public:
    void SetUp() override
    {
        letSignalsEndPrograms();
        FormatRegistry::readHdf5Apart(true);
    }
    void TearDown() override { FormatRegistry::readHdf5Apart(false); }

    static pid_t reader()
    {
        const std::vector<pid_t> all = children();
        return all.size() == 1 ? all.front() : -1;
    }

    const TempFolder folder;
    const std::string path = writeMaster(folder);
};

}  // namespace

TEST_F(Apart, ImagesAndHeadersAreThoseReadInPlace)
{
    MImageSeries apart(0);
    EXPECT_EQ(apart.open(path), 1);
    ASSERT_NE(reader(), -1);
    FormatRegistry::readHdf5Apart(false);
    MImageSeries here(0);
    EXPECT_EQ(here.open(path), 1);
    EXPECT_EQ(apart.formatName(), here.formatName());
    EXPECT_EQ(apart.last(), 5);
    for (const std::size_t number : {1u, 2u, 5u, 3u, 1u}) {
        const MImage one = apart.at(number);
        const MImage other = here.at(number);
        EXPECT_TRUE(samePixels(one, other));
        EXPECT_EQ(apart.pathToImage(number), here.pathToImage(number));
        const auto& header = one.optionalData();
        const auto& expected = other.optionalData();
        EXPECT_EQ(header.rotation_angle(), 0.5f * (static_cast<float>(number) - 1));
        EXPECT_EQ(shown(header), shown(expected));
        EXPECT_EQ(header.rawHeader(), expected.rawHeader());
        EXPECT_EQ(header.nexusTree().toText(), expected.nexusTree().toText());
        ASSERT_TRUE(header.pixel_mask());
        EXPECT_TRUE(samePixels(*header.pixel_mask(), *expected.pixel_mask()));
    }
    // One that did not change is known to be the same.
    EXPECT_EQ(apart.at(1).optionalData().pixel_mask()->identity(),
              apart.at(4).optionalData().pixel_mask()->identity());
    EXPECT_THROW(apart.at(6), MOutOfRangeException);
}

TEST_F(Apart, EverySeriesHasAReaderOfItsOwn)
{
    MImageSeries one(0);
    MImageSeries two(0);
    one.open(path);
    const pid_t first = reader();
    two.open(path);
    EXPECT_EQ(children().size(), 2u);
    ::kill(first, SIGKILL);
    // A reader that is gone costs nothing but its start.
    EXPECT_EQ(two.at(2).pixel<int>(0, 0, 0), 101);
    EXPECT_EQ(one.at(2).pixel<int>(699, 499, 0), 101);
    const std::vector<pid_t> readers = children();
    one.open(1);
    // On a busy machine a killed process takes its time.
    EXPECT_TRUE(waitFor([&] { return std::ranges::count_if(readers, hasEnded) == 1; }));
}

TEST_F(Apart, SeriesGrow)
{
    const TempFolder growing;
    MHdf5Writer writer(growing / "g_master.h5", 0, {}, MCompression::NONE);
    const MImage image(64, 64, 7);
    writer.write(image);
    writer.flush();
    MImageSeries series(0);
    series.open(growing / "g_master.h5");
    EXPECT_EQ(series.last(), 1);
    writer.write(image);
    writer.write(image);
    writer.flush();
    series.update();
    EXPECT_EQ(series.last(), 3);
    EXPECT_EQ(series.at(3).pixel<int>(1, 1, 0), 7);
}

}  // namespace tarvik::tests
