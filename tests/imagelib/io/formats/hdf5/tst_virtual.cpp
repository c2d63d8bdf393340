// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Virtual data sets: whole frames, parts of frames, lost sources.
#include "tests/imagelib/io/formats/hdf5/Samples.h"

#include <gmock/gmock.h>

namespace tarvik::tests {

using namespace morvend::imglib;
using testing::EndsWith;
using testing::HasSubstr;

class Hdf5Virtual : public Samples<Hdf5Virtual> {
public:
    static constexpr const char* Group = "virtual";

    template <class T>
    static void expectFrames(const std::string& name, std::size_t frames)
    {
        SCOPED_TRACE(name);
        const auto file = open(name);
        ASSERT_EQ(file->frameCount(), frames);
        for (std::size_t f = frames; f-- > 0;)
            EXPECT_EQ(differenceFrom<T>(file->frame(f), f), "") << "frame " << f;
    }
};

TEST_F(Hdf5Virtual, FramesComeFromTheirSources)
{
    expectFrames<unsigned short>("stack.h5", 6);
    expectFrames<unsigned short>("same_file.h5", 4);
    expectFrames<unsigned short>("interleaved.h5", 4);
    expectFrames<unsigned short>("of_flat.h5", 2);
    expectFrames<unsigned short>("numbered.h5", 6);
}

TEST_F(Hdf5Virtual, AFileThatWasRenamedFindsItsOwnDataSet)
{
    expectFrames<unsigned short>("renamed.h5", 4);
}

TEST_F(Hdf5Virtual, PixelsHaveTheDeclaredType)
{
    const auto wider = open("wider.h5");
    const auto floating = open("floating.h5");
    for (std::size_t f = 0; f < 6; ++f) {
        const MImage integers = wider->frame(f);
        const MImage doubles = floating->frame(f);
        for (int y = 0; y < SampleHeight; ++y)
            for (int x = 0; x < SampleWidth; ++x) {
                const unsigned value = sampleValue<unsigned short>(f, y, x);
                ASSERT_EQ(integers.pixels<unsigned>()[y * SampleWidth + x], value);
                ASSERT_EQ(doubles.pixels<double>()[y * SampleWidth + x], value);
            }
    }
}

TEST_F(Hdf5Virtual, ALostSourceIsAnErrorThatNamesIt)
{
    const auto file = open("missing.h5");
    ASSERT_EQ(file->frameCount(), 6u);
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(1), 1), "");
    EXPECT_THAT(messageOf([&] { file->frame(2); }), HasSubstr(path("lost.h5")));
    EXPECT_EQ(file->framePath(2), path("lost.h5"));
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(5), 5), "");
}

TEST_F(Hdf5Virtual, PlacesWithoutASourceShowTheFillValue)
{
    const auto file = open("unmapped.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(0), 0), "");
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
    const MImage image = open("comb.h5")->frame(1);
    ASSERT_EQ(image.width(), 2 * SampleWidth);
    for (int y = 0; y < SampleHeight; ++y)
        for (int x = 0; x < 2 * SampleWidth; ++x)
            ASSERT_EQ(image.pixel<unsigned>(x, y, 0),
                      sampleValue<unsigned short>(static_cast<std::size_t>(1 + x % 2), y, x / 2));
    EXPECT_THAT(messageOf([] { open("comb_missing.h5")->frame(0); }), HasSubstr("lost.h5"));
}

TEST_F(Hdf5Virtual, DataSetsThatReferToEachOtherEnd)
{
    EXPECT_THAT(messageOf([] { open("ring_a.h5")->frame(0); }), HasSubstr("without end"));
    EXPECT_THAT(messageOf([] { open("ring_endless.h5")->frame(0); }), HasSubstr("HDF5: "));
    EXPECT_THAT(messageOf([] { open("comb_of_comb.h5")->frame(0); }), HasSubstr("followed"));
}

TEST_F(Hdf5Virtual, ADataFileOpensItsVirtualMaster)
{
    const auto file = open("stack_data_000002.h5");
    EXPECT_EQ(file->frameCount(), 4u);
    EXPECT_EQ(file->openedFrame(), 2u);
    EXPECT_EQ(file->framePath(3), path("stack_data_000002.h5"));
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(3), 3), "");
}

}  // namespace tarvik::tests
