// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Virtual data sets: whole frames, parts of frames, lost sources.
#include "tests/imagelib/io/formats/hdf5/Samples.h"

namespace tarvik::tests {

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
    EXPECT_THAT(failureOf([&] { file->frame(2); }), HasSubstr(path("lost.h5")));
    EXPECT_EQ(file->framePath(2), path("lost.h5"));
    EXPECT_EQ(differenceFrom(file->frame(5), 5), "");
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
