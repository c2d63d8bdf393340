// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Masters with their blocks, data files without a master, series that grow or have holes.
#include "tests/imagelib/io/formats/hdf5/Samples.h"
#include "tests/support/Processes.h"

namespace tarvik::tests {

namespace fs = std::filesystem;

class Hdf5Series : public Samples<Hdf5Series> {
public:
    static constexpr const char* Group = "series";

    /// Puts a file into place that was made for later.
    static void add(const std::string& name) { fs::rename(path("later/" + name), path(name)); }
};

TEST_F(Hdf5Series, EveryFileOfTheSetOpensTheSeriesAtItsOwnFirstFrame)
{
    // Files, the number of frames, and the position of the first one of that file.
    std::istringstream cases(R"(
one_master.h5 10 0  zero_master.h5 10 0  planned_master.h5 7 0  uneven_master.h5 15 0
long_master.h5 80 0  numbered_master.h5 79 0  announced_master.h5 79 0  dead_master.h5 6 0
noslash_master.h5 6 0  foreign_master.hdf5 3 0  single_master.h5 3 0  one_data_000001.h5 10 0
one_data_000003.h5 10 8  zero_data_000000.h5 10 0  zero_data_000002.h5 10 8
uneven_data_000003.h5 15 7  longuneven_data_000030.h5 81 59  single_data.h5 3 0
orphan_data_000000.h5 7 0  orphan_data_000002.h5 7 6)");
    std::size_t frames = 0, opened = 0;
    for (std::string name; cases >> name >> frames >> opened;) {
        SCOPED_TRACE(name);
        const auto file = open(name);
        EXPECT_EQ(file->openedFrame(), opened);
        if (name.find("master") == std::string::npos) {
            EXPECT_THAT(file->framePath(opened), EndsWith(name));
        }
        expectFrames(*file, frames);
    }
    EXPECT_EQ(*open("single_data.h5")->frame(0).optionalData().wavelength(), 1.25f);
}

TEST_F(Hdf5Series, ADataFileThatItsMasterDoesNotKnowStandsForItself)
{
    const auto file = open("stranger_data_000009.h5");
    EXPECT_EQ(differenceFrom(file->frame(file->openedFrame()), 100), "");
}

TEST_F(Hdf5Series, JumpsInLongSeriesFindTheRightFrame)
{
    for (const char* name : {"longuneven_master.h5", "long_master.h5", "numbered_master.h5"})
        for (const std::size_t f : {78u, 40u, 41u, 2u, 77u, 43u})
            EXPECT_EQ(differenceFrom(open(name)->frame(f), f), "") << name << ' ' << f;
}

TEST_F(Hdf5Series, WhatTheMetadataDoNotSayIsCountedWhenItIsTouched)
{
    const auto uncounted = open("longuneven_master.h5");
    EXPECT_EQ(differenceFrom(uncounted->frame(0), 0), "");
    EXPECT_EQ(differenceFrom(uncounted->frame(1), 1), "");
    expectFrames(*uncounted, 81);
    const auto lying = open("lying_master.h5");
    EXPECT_EQ(differenceFrom(lying->frame(40), 40), "");
    expectFrames(*lying, 79);
}

TEST_F(Hdf5Series, ABlockThatIsMissingOrDamagedFailsItsOwnFramesAlone)
{
    const struct {
        std::string name;
        std::size_t frames, block, from, to;  // the frames that fail
    } cases[] = {{"gap", 17, 4, 4, 12}, {"firstgap", 9, 3, 0, 3}, {"broken", 12, 4, 4, 8}};
    for (const auto& each : cases) {
        const auto file = open(each.name + "_master.h5");
        ASSERT_EQ(file->frameCount(), each.frames);
        for (std::size_t f = 0; f < each.frames; ++f) {
            if (f < each.from || f >= each.to) {
                EXPECT_EQ(differenceFrom(file->frame(f), f), "") << each.name << f;
                continue;
            }
            const std::string lost =
                each.name + "_data_00000" + std::to_string(f / each.block + 1) + ".h5";
            EXPECT_THAT(failureOf([&] { file->frame(f); }),
                        testing::AllOf(HasSubstr(lost),
                                       HasSubstr("/data" + lost.substr(lost.find('_') + 5, 7)),
                                       HasSubstr(path(each.name + "_master.h5"))));
            EXPECT_EQ(file->framePath(f), path(lost));
        }
    }
    EXPECT_EQ(failureOf([] { open("none_master.h5"); }),
              "HDF5: none of the 3 data files exists, the first is " + path("none_data_000001.h5") +
                  ", to which the link /entry/data/data_000001 leads: " + path("none_master.h5"));
}

TEST_F(Hdf5Series, AFileThatVanishesFailsItsFramesAndOneThatIsReplacedIsReadAnew)
{
    const auto gone = open("gone_master.h5");
    const auto anew = open("anew_master.h5");
    EXPECT_EQ(differenceFrom(gone->frame(5), 5), "");
    EXPECT_EQ(differenceFrom(anew->frame(5), 5), "");
    fs::remove(path("gone_data_000002.h5"));
    EXPECT_THAT(failureOf([&] { gone->frame(5); }), HasSubstr("gone_data_000002.h5"));
    EXPECT_EQ(differenceFrom(gone->frame(1), 1), "");
    add("anew_data_000002.h5");
    EXPECT_EQ(differenceFrom(anew->frame(5), 51), "");
}

TEST_F(Hdf5Series, UpdateSeesNewFiles)
{
    const auto file = open("grow_master.h5");
    expectFrames(*file, 6);
    add("grow_data_000003.h5");
    add("grow_data_000004.h5");
    EXPECT_EQ(file->frameCount(), 6u);
    file->update();
    expectFrames(*file, 10);
    EXPECT_EQ(file->frame(0).optionalData().nexusTree().toText(),
              "/entry/instrument/detector/detectorSpecific/nimages = 10\n");

    const auto loose = open("loose_data_000001.h5");
    expectFrames(*loose, 4);
    add("loose_data_000003.h5");
    loose->update();
    expectFrames(*loose, 6);
}

TEST_F(Hdf5Series, AFileIsReadWhileItsWriterHasItOpenAndDoesNotShutItOut)
{
    const auto file = open("live.h5");
    expectFrames(*file, 2);
    runPython("formats/hdf5/make_samples.py", "'" + allSamples().path() + "' writer &");
    ASSERT_TRUE(waitFor([] { return fs::exists(path("ready")); }));
    file->update();
    expectFrames(*file, 8);
    expectFrames("live.h5", 8);
    fs::remove(path("ready"));
}

TEST_F(Hdf5Series, UpdateOfADamagedMasterKeepsWhatWasKnown)
{
    const auto file = open("hurt_master.h5");
    fs::resize_file(path("hurt_master.h5"), 100);
    file->update();
    EXPECT_EQ(file->frameCount(), 10u);
}

}  // namespace tarvik::tests
