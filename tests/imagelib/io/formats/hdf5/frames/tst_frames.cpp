// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of every pixel type, byte order, layout and filter, and virtual data sets, against the
// values that h5py wrote.
#include "tests/imagelib/io/formats/hdf5/Samples.h"

namespace tarvik::tests {

class Hdf5Frames : public Samples<Hdf5Frames> {
public:
    static constexpr const char* Group = "frames";

    template <class T>
    static void expectAllOrders(const std::string& type)
    {
        for (const char* kind : {"contiguous_le_", "contiguous_be_", "chunked_le_", "chunked_be_"})
            expectFrames<T>(kind + type + ".h5", 3);
    }
};

TEST_F(Hdf5Frames, EveryPixelTypeInEitherByteOrder)
{
    expectAllOrders<unsigned char>("u1");
    expectAllOrders<unsigned short>("u2");
    expectAllOrders<unsigned>("u4");
    expectAllOrders<unsigned long long>("u8");
    expectAllOrders<signed char>("i1");
    expectAllOrders<short>("i2");
    expectAllOrders<int>("i4");
    expectAllOrders<long long>("i8");
    expectAllOrders<float>("f4");
    expectAllOrders<double>("f8");
}

TEST_F(Hdf5Frames, HalfPrecisionIsWidened)
{
    expectAllOrders<float>("f2");
    EXPECT_EQ(shown(open("half_specials.h5")->frame(0)),
              "FLOAT32 5x2: 0 -0 5.96046e-08 -5.96046e-08 6.09756e-05 65504 -65504 inf -inf nan");
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
    for (const std::string layout :
         {"one_frame_chunks", "two_frame_chunks", "tiles", "tiles_of_frames", "rows"}) {
        expectFrames<unsigned>(layout + ".h5", 5);
        expectFrames<unsigned>(layout + "_gzip.h5", 5);
        expectFrames<float>(layout + "_half.h5", 5);
    }
    for (const char* name : {"contiguous.h5", "resizable_wide_chunks.h5", "compact.h5",
                             "user_block.h5", "checksum.h5", "scaleoffset.h5"})
        expectFrames<unsigned>(name, 5);
    for (const char* name : {"two_d.h5", "two_d_chunked.h5"}) {
        EXPECT_EQ(open(name)->frameCount(), 1u);
        EXPECT_EQ(differenceFrom<unsigned>(open(name)->frame(0), 1), "") << name;
    }
    // A chunk may be longer than its pixels.
    expectFrames<unsigned>("long_plain.h5", 2);
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
    // Plain and packed chunks in turn.
    expectFrames<unsigned>("mixed.h5", 4);
}

TEST_F(Hdf5Frames, ThatWereNeverWrittenShowTheFillValue)
{
    const auto file = open("never_written.h5");
    EXPECT_EQ(differenceFrom<int>(file->frame(1), 1), "");
    EXPECT_EQ(file->frame(3).pixel<int>(36, 22, 0), -7);
    EXPECT_EQ(open("never_begun.h5")->frame(4).pixel<float>(36, 22, 0), 1.5f);
}

TEST_F(Hdf5Frames, MissingFiltersAreNamed)
{
    const auto file = open("unknown_filter.h5");
    const std::string message = failureOf([&] { file->frame(1); });
    EXPECT_THAT(message, HasSubstr("frame 2 of /entry/data/data"));
    EXPECT_THAT(message, HasSubstr("32026"));
    EXPECT_THAT(message, HasSubstr(path("unknown_filter.h5")));
}

TEST_F(Hdf5Frames, OneDamagedFrameLeavesTheOthers)
{
    const auto file = open("bad_chunk.h5");
    EXPECT_EQ(differenceFrom(file->frame(0), 0), "");
    EXPECT_THAT(failureOf([&] { file->frame(1); }),
                HasSubstr("frame 2 of /entry/data/data is damaged"));
    EXPECT_EQ(differenceFrom(file->frame(2), 2), "");
    EXPECT_THROW(file->frame(3), MOutOfRangeException);
    EXPECT_THROW(file->frame(std::size_t(-1)), MOutOfRangeException);
}

TEST_F(Hdf5Frames, OtherFilesAreNotTakenAndPackedOnesAreRefused)
{
    for (const std::string& content :
         {std::string(), std::string("###CBF: VERSION 1.5"), std::string(5000, '\0')})
        EXPECT_EQ(openBytes(openHdf5, content), nullptr);
    ASSERT_EQ(std::system(("gzip -k '" + path("two_d.h5") + "'").c_str()), 0);
    EXPECT_THAT(failureOf([] { open("two_d.h5.gz"); }), HasSubstr("must be unpacked"));
}

class Hdf5Virtual : public Samples<Hdf5Virtual> {
public:
    static constexpr const char* Group = "virtual";
};

TEST_F(Hdf5Virtual, FramesComeFromTheirSources)
{
    expectFrames("stack.h5", 6);
    expectFrames("same_file.h5", 4);
    expectFrames("renamed.h5", 4);
    expectFrames("interleaved.h5", 4);
    expectFrames("of_flat.h5", 2);
    expectFrames("numbered.h5", 6);
}

TEST_F(Hdf5Virtual, PixelsHaveTheDeclaredType)
{
    const auto wider = open("wider.h5");
    const auto floating = open("floating.h5");
    expectFrames<unsigned>(*wider, 6);
    for (std::size_t f = 0; f < 6; ++f) {
        const MImage doubles = floating->frame(f);
        for (std::size_t i = 0; i < doubles.size(); ++i)
            ASSERT_EQ(doubles.pixels<double>()[i], wider->frame(f).pixels<unsigned>()[i]);
    }
}

TEST_F(Hdf5Virtual, ALostSourceIsAnErrorThatNamesIt)
{
    const auto file = open("missing.h5");
    ASSERT_EQ(file->frameCount(), 6u);
    EXPECT_EQ(differenceFrom(file->frame(1), 1), "");
    EXPECT_EQ(failureOf([&] { file->frame(2); }),
              "HDF5: there is no such file: " + path("lost.h5") +
                  ", to which /entry/data/data of " + path("missing.h5") + " leads");
    EXPECT_EQ(file->framePath(2), path("lost.h5"));
    EXPECT_EQ(differenceFrom(file->frame(5), 5), "");
    // Its path in the lost file is that of the virtual data set, which must not refer to itself.
    EXPECT_THAT(failureOf([] { open("missing_data.h5")->frame(0); }), HasSubstr(path("lost.h5")));
}

TEST_F(Hdf5Virtual, PlacesWithoutASourceShowTheFillValue)
{
    const auto file = open("unmapped.h5");
    EXPECT_EQ(differenceFrom(file->frame(0), 0), "");
    const MImage image = file->frame(3);
    for (std::size_t i = 0; i < image.size(); ++i)
        ASSERT_EQ(image.pixels<unsigned short>()[i], 77);
    EXPECT_EQ(open("nested.h5")->frame(5).pixel<int>(1, 1, -1), 0);
}

TEST_F(Hdf5Virtual, ModulesAreLaidOutWithTheirGap)
{
    const auto file = open("modules.h5");
    for (std::size_t f = 0; f < 2; ++f) {
        const MImage image = file->frame(f);
        for (int y = 0; y < SampleHeight; ++y)
            for (int x = 0; x < SampleWidth; ++x)
                ASSERT_EQ(image.pixel<unsigned>(x, y, 0),
                          y >= 10 && y < 13 ? 9999u : sampleValue<unsigned short>(f, y, x))
                    << x << ", " << y;
    }
}

TEST_F(Hdf5Virtual, IrregularMappingsAreLeftToTheLibrary)
{
    // Which unpacks the filtered ones by the codecs of this program.
    for (const char* name : {"comb.h5", "filtered.h5"}) {
        const MImage image = open(name)->frame(1);
        ASSERT_EQ(image.width(), 2 * SampleWidth);
        for (int y = 0; y < SampleHeight; ++y)
            for (int x = 0; x < 2 * SampleWidth; ++x)
                ASSERT_EQ(image.pixel<unsigned>(x, y, 0),
                          sampleValue<unsigned short>(std::size_t(1 + x % 2), y, x / 2));
    }
    const MImage planes = open("planes_comb.h5")->frame(1);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(planes.pixel<unsigned>(x, y, 0), sampleValue<unsigned short>(1, y, x / 2));
    EXPECT_THAT(failureOf([] { open("comb_missing.h5")->frame(0); }), HasSubstr("lost.h5"));
}

TEST_F(Hdf5Virtual, DataSetsThatReferToEachOtherEnd)
{
    EXPECT_THAT(failureOf([] { open("ring_a.h5")->frame(0); }), HasSubstr("without end"));
    EXPECT_THAT(failureOf([] { open("ring_endless.h5")->frame(0); }), HasSubstr("HDF5: "));
    EXPECT_THAT(failureOf([] { open("comb_of_comb.h5")->frame(0); }), HasSubstr("followed"));
}

TEST_F(Hdf5Virtual, ADataFileOpensItsVirtualMaster)
{
    const auto file = open("stack_data_000002.h5");
    expectFrames(*file, 4);
    EXPECT_EQ(file->openedFrame(), 2u);
    EXPECT_EQ(file->framePath(3), path("stack_data_000002.h5"));
}

}  // namespace tarvik::tests
