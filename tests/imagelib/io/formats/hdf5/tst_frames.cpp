// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of every pixel type, byte order, layout and filter, against the values that h5py wrote.
#include "tests/imagelib/io/formats/hdf5/Samples.h"

#include <gmock/gmock.h>

#include <cmath>

namespace tarvik::tests {

using namespace morvend::imglib;
using testing::HasSubstr;

class Hdf5Frames : public Samples<Hdf5Frames> {
public:
    static constexpr const char* Group = "frames";

    template <class T>
    static void expectFrames(const std::string& name, std::size_t frames)
    {
        SCOPED_TRACE(name);
        const auto file = open(name);
        EXPECT_STREQ(file->format(), "HDF5");
        EXPECT_EQ(file->firstNumber(), 1);
        ASSERT_EQ(file->frameCount(), frames);
        // Backwards, so that nothing rests on the order.
        for (std::size_t f = frames; f-- > 0;)
            EXPECT_EQ(differenceFrom<T>(file->frame(f), f), "") << "frame " << f;
    }

    template <class T>
    static void expectAllLayouts(const std::string& type)
    {
        for (const char* prefix :
             {"contiguous_le_", "contiguous_be_", "chunked_le_", "chunked_be_"})
            expectFrames<T>(prefix + type + ".h5", 3);
    }
};

TEST_F(Hdf5Frames, EveryPixelTypeInEitherByteOrder)
{
    expectAllLayouts<unsigned char>("u1");
    expectAllLayouts<unsigned short>("u2");
    expectAllLayouts<unsigned>("u4");
    expectAllLayouts<unsigned long long>("u8");
    expectAllLayouts<signed char>("i1");
    expectAllLayouts<short>("i2");
    expectAllLayouts<int>("i4");
    expectAllLayouts<long long>("i8");
    expectAllLayouts<float>("f4");
    expectAllLayouts<double>("f8");
}

TEST_F(Hdf5Frames, HalfPrecisionIsWidened)
{
    expectAllLayouts<float>("f2");
    const MImage image = open("half_specials.h5")->frame(0);
    ASSERT_EQ(image.size(), 10u);
    const float* v = image.pixels<float>();
    EXPECT_EQ(v[0], 0.0f);
    EXPECT_TRUE(std::signbit(v[1]));
    EXPECT_EQ(v[2], 0x1p-24f);
    EXPECT_EQ(v[3], -0x1p-24f);
    EXPECT_EQ(v[4], 1023 * 0x1p-24f);
    EXPECT_EQ(v[5], 65504.0f);
    EXPECT_EQ(v[6], -65504.0f);
    EXPECT_EQ(v[7], INFINITY);
    EXPECT_EQ(v[8], -INFINITY);
    EXPECT_TRUE(std::isnan(v[9]));
}

TEST_F(Hdf5Frames, BooleansAreTheIntegersThatTheyAreStoredAs)
{
    const MImage image = open("bool.h5")->frame(1);
    for (int y = 0; y < SampleHeight; ++y)
        for (int x = 0; x < SampleWidth; ++x)
            ASSERT_EQ(image.pixel<int>(x, y, -1), int(sampleValue<unsigned>(1, y, x) % 2));
    EXPECT_EQ(image.typeBits(), 8u);
}

TEST_F(Hdf5Frames, EveryLayout)
{
    for (const char* layout :
         {"one_frame_chunks", "two_frame_chunks", "tiles", "tiles_of_frames", "rows"}) {
        expectFrames<unsigned>(std::string(layout) + ".h5", 5);
        expectFrames<unsigned>(std::string(layout) + "_gzip.h5", 5);
        expectFrames<float>(std::string(layout) + "_half.h5", 5);
    }
    for (const char* name : {"contiguous.h5", "resizable_wide_chunks.h5", "compact.h5",
                             "user_block.h5", "checksum.h5", "scaleoffset.h5"})
        expectFrames<unsigned>(name, 5);
}

TEST_F(Hdf5Frames, TwoDimensionsAreOneFrame)
{
    for (const char* name : {"two_d.h5", "two_d_chunked.h5"}) {
        const auto file = open(name);
        EXPECT_EQ(file->frameCount(), 1u);
        EXPECT_EQ(differenceFrom<unsigned>(file->frame(0), 1), "") << name;
    }
}

TEST_F(Hdf5Frames, ModulesAreStackedBelowEachOther)
{
    for (const char* name : {"modules.h5", "modules_chunked.h5"}) {
        const auto file = open(name);
        ASSERT_EQ(file->frameCount(), 3u);
        const MImage image = file->frame(2);
        ASSERT_EQ(image.height(), 2 * SampleHeight);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < SampleWidth; ++x)
                ASSERT_EQ(image.pixel<unsigned>(x, y, 0),
                          sampleValue<unsigned>(static_cast<std::size_t>(4 + y / SampleHeight),
                                                y % SampleHeight, x));
    }
}

TEST_F(Hdf5Frames, BitshuffleAndLz4AreDecodedHere)
{
    expectFrames<unsigned char>("bslz4_u1.h5", 3);
    expectFrames<unsigned short>("bslz4_u2.h5", 3);
    expectFrames<unsigned>("bslz4_u4.h5", 3);
    expectFrames<int>("bslz4_i4.h5", 3);
    expectFrames<unsigned long long>("bslz4_u8.h5", 3);
    expectFrames<unsigned short>("bslz4_be_u2.h5", 3);
    expectFrames<unsigned>("bslz4_small_blocks.h5", 3);
    expectFrames<unsigned>("lz4.h5", 3);
}

TEST_F(Hdf5Frames, PlainAndPackedChunksMayBeMixed) { expectFrames<unsigned>("mixed.h5", 4); }

TEST_F(Hdf5Frames, FramesThatWereNeverWrittenShowTheFillValue)
{
    const auto file = open("never_written.h5");
    EXPECT_EQ(differenceFrom<int>(file->frame(1), 1), "");
    EXPECT_EQ(file->frame(3).pixel<int>(36, 22, 0), -7);
    EXPECT_EQ(open("never_begun.h5")->frame(4).pixel<float>(36, 22, 0), 1.5f);
}

TEST_F(Hdf5Frames, MissingFiltersAreNamed)
{
    const auto file = open("unknown_filter.h5");
    const std::string message = messageOf([&] { file->frame(1); });
    EXPECT_THAT(message, HasSubstr("frame 2 of /entry/data/data"));
    EXPECT_THAT(message, HasSubstr("32026"));
    EXPECT_THAT(message, HasSubstr(path("unknown_filter.h5")));
}

TEST_F(Hdf5Frames, FramesBeyondTheEndAreOutOfRange)
{
    const auto file = open("contiguous.h5");
    EXPECT_THROW(file->frame(5), morvend::MOutOfRangeException);
    EXPECT_THROW(file->frame(std::size_t(-1)), morvend::MOutOfRangeException);
}

TEST_F(Hdf5Frames, WholeFileCompressionIsRefused)
{
    ASSERT_EQ(std::system(("gzip -k '" + path("two_d.h5") + "'").c_str()), 0);
    EXPECT_THAT(messageOf([] { open("two_d.h5.gz"); }), HasSubstr("must be unpacked"));
}

TEST_F(Hdf5Frames, OtherFilesAreNotTaken)
{
    const TempFolder folder;
    const auto other = [&](const std::string& content) {
        return openHdf5(ByteSource::open(folder.write("file", content)));
    };
    EXPECT_EQ(other(""), nullptr);
    EXPECT_EQ(other("###CBF: VERSION 1.5"), nullptr);
    EXPECT_EQ(other(std::string(5000, '\0')), nullptr);
}

}  // namespace tarvik::tests
