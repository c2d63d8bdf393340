// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Masters with their blocks, data files without a master, series that grow or have holes.
#include "tests/imagelib/io/formats/hdf5/Samples.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <numeric>
#include <vector>

namespace tarvik::tests {

using namespace morvend::imglib;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

class Hdf5Series : public Samples<Hdf5Series> {
public:
    static constexpr const char* Group = "series";

    /// All frames in order, then the first again: so that every block has been touched.
    static void expectFrames(const ImageFile& file, std::size_t frames)
    {
        ASSERT_EQ(file.frameCount(), frames);
        for (std::size_t f = 0; f < frames; ++f)
            EXPECT_EQ(differenceFrom<unsigned short>(file.frame(f), f), "") << "frame " << f;
        EXPECT_EQ(differenceFrom<unsigned short>(file.frame(0), 0), "");
        EXPECT_EQ(file.frameCount(), frames);
    }

    /// Runs Python with the sample module at hand, in the folder of the samples.
    static void python(const std::string& code)
    {
        const std::string command = "cd '" + path(".") +
                                    "' && PYTHONDONTWRITEBYTECODE=1 PYTHONPATH='" TARVIK_SOURCE_DIR
                                    "/tests/imagelib/io/formats/hdf5' '" TARVIK_PYTHON
                                    "' -c 'import make_samples as s, h5py, numpy\n" +
                                    code + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
};

struct SeriesCase {
    const char* name;
    std::size_t frames;
};

TEST_F(Hdf5Series, MastersShowAllTheirBlocks)
{
    const SeriesCase cases[] = {
        {"one_master.h5", 10},       {"zero_master.h5", 10},  {"planned_master.h5", 7},
        {"uneven_master.h5", 15},    {"long_master.h5", 80},  {"numbered_master.h5", 79},
        {"announced_master.h5", 79}, {"dead_master.h5", 6},   {"noslash_master.h5", 6},
        {"foreign_master.hdf5", 3},  {"single_master.h5", 3},
    };
    for (const SeriesCase& each : cases) {
        SCOPED_TRACE(each.name);
        const auto file = open(each.name);
        expectFrames(*file, each.frames);
        EXPECT_EQ(file->openedFrame(), 0u);
    }
}

struct OpenedCase {
    const char* name;
    std::size_t frames;
    std::size_t opened;
};

TEST_F(Hdf5Series, EveryFileOfTheSetOpensTheSeriesAtItsOwnFirstFrame)
{
    const OpenedCase cases[] = {
        {"one_data_000001.h5", 10, 0},    {"one_data_000003.h5", 10, 8},
        {"zero_data_000000.h5", 10, 0},   {"zero_data_000002.h5", 10, 8},
        {"uneven_data_000003.h5", 15, 7}, {"longuneven_data_000030.h5", 81, 59},
        {"single_data.h5", 3, 0},         {"orphan_data_000000.h5", 7, 0},
        {"orphan_data_000002.h5", 7, 6},
    };
    for (const OpenedCase& each : cases) {
        SCOPED_TRACE(each.name);
        const auto file = open(each.name);
        EXPECT_EQ(file->openedFrame(), each.opened);
        EXPECT_THAT(file->framePath(each.opened), EndsWith(each.name));
        expectFrames(*file, each.frames);
    }
    EXPECT_FLOAT_EQ(*open("single_data.h5")->frame(0).optionalData().wavelength(), 1.25f);
}

TEST_F(Hdf5Series, ADataFileThatItsMasterDoesNotKnowStandsForItself)
{
    const auto file = open("stranger_data_000009.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(file->openedFrame()), 100), "");
}

TEST_F(Hdf5Series, JumpsInLongSeriesFindTheRightFrame)
{
    for (const char* name : {"longuneven_master.h5", "long_master.h5", "numbered_master.h5"}) {
        SCOPED_TRACE(name);
        for (const std::size_t f : {78u, 40u, 41u, 2u, 77u, 43u})
            EXPECT_EQ(differenceFrom<unsigned short>(open(name)->frame(f), f), "") << f;
    }
}

TEST_F(Hdf5Series, ALongSeriesWithoutAnyNumbersIsCountedWithTheSecondImage)
{
    const auto file = open("longuneven_master.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(0), 0), "");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(1), 1), "");
    expectFrames(*file, 81);
}

TEST_F(Hdf5Series, ABlockOfAnotherSizeThanTheMetadataSayIsFoundWhenItIsTouched)
{
    const auto file = open("lying_master.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(40), 40), "");
    expectFrames(*file, 79);
}

TEST_F(Hdf5Series, AMissingBlockFailsItsOwnFramesAlone)
{
    const auto file = open("gap_master.h5");
    ASSERT_EQ(file->frameCount(), 17u);
    for (std::size_t f = 0; f < 17; ++f) {
        if (f < 4 || f >= 12) {
            EXPECT_EQ(differenceFrom<unsigned short>(file->frame(f), f), "") << f;
            continue;
        }
        const std::string lost = f < 8 ? "gap_data_000002.h5" : "gap_data_000003.h5";
        EXPECT_THAT(messageOf([&] { file->frame(f); }), HasSubstr(lost));
        EXPECT_EQ(file->framePath(f), path(lost));
    }
}

TEST_F(Hdf5Series, TheFirstBlockMayBeMissing)
{
    const auto file = open("firstgap_master.h5");
    ASSERT_EQ(file->frameCount(), 9u);
    EXPECT_THAT(messageOf([&] { file->frame(2); }), HasSubstr("firstgap_data_000001.h5"));
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(3), 3), "");
}

TEST_F(Hdf5Series, ADamagedBlockFailsItsOwnFramesAlone)
{
    const auto file = open("broken_master.h5");
    ASSERT_EQ(file->frameCount(), 12u);
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(3), 3), "");
    EXPECT_THAT(messageOf([&] { file->frame(4); }), HasSubstr("broken_data_000002.h5"));
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(8), 8), "");
}

TEST_F(Hdf5Series, AMasterWithoutAnyBlockNamesTheFirst)
{
    EXPECT_THAT(messageOf([] { open("none_master.h5"); }), HasSubstr("none_data_000001.h5"));
}

TEST_F(Hdf5Series, AFileThatVanishesFailsItsFrames)
{
    python("s.master(\"gone\", [2, 2])");
    const auto file = open("gone_master.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(2), 2), "");
    fs::remove(path("gone_data_000002.h5"));
    EXPECT_THAT(messageOf([&] { file->frame(2); }), HasSubstr("gone_data_000002.h5"));
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(1), 1), "");
}

TEST_F(Hdf5Series, AFileThatIsReplacedIsReadAnew)
{
    python("s.master(\"anew\", [2, 2])");
    const auto file = open("anew_master.h5");
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(2), 2), "");
    python("s.block(\"other.h5\", 2, 50)");
    fs::rename(path("other.h5"), path("anew_data_000002.h5"));
    EXPECT_EQ(differenceFrom<unsigned short>(file->frame(2), 50), "");
}

TEST_F(Hdf5Series, UpdateSeesNewBlocks)
{
    const auto file = open("grow_master.h5");
    expectFrames(*file, 6);
    python("s.block(\"grow_data_000003.h5\", 3, 6)\ns.block(\"grow_data_000004.h5\", 1, 9)");
    EXPECT_EQ(file->frameCount(), 6u);
    file->update();
    expectFrames(*file, 10);
    EXPECT_EQ(file->frame(0).optionalData().nexusTree().toText(),
              "/entry/instrument/detector/detectorSpecific/nimages = 10\n");
}

TEST_F(Hdf5Series, UpdateSeesNewFilesOfASeriesWithoutMaster)
{
    python("s.block(\"loose_data_000001.h5\", 2, 0)\ns.block(\"loose_data_000002.h5\", 2, 2)");
    const auto file = open("loose_data_000001.h5");
    expectFrames(*file, 4);
    python("s.block(\"loose_data_000003.h5\", 2, 4)");
    file->update();
    expectFrames(*file, 6);
}

TEST_F(Hdf5Series, UpdateSeesDataSetsGrowAndNeverShutsTheWriterOut)
{
    const auto file = open("growing.h5");
    expectFrames(*file, 2);
    // The file is open here while another process writes it.
    python("f = h5py.File(\"growing.h5\", \"r+\")\n"
           "d = f[\"entry/data/data\"]\n"
           "d.resize(5, axis=0)\n"
           "d[2:] = s.pattern(3, \"u2\", 2)\n"
           "f.close()");
    file->update();
    expectFrames(*file, 5);
}

TEST_F(Hdf5Series, AFileIsReadWhileItsWriterHasItOpen)
{
    fs::copy_file(path("growing.h5"), path("live.h5"), fs::copy_options::overwrite_existing);
    const auto file = open("live.h5");
    const std::size_t before = file->frameCount();
    // The writer keeps the file open, as one with readers beside it, until the marker goes.
    python(
        "import subprocess, sys, os, time\n"
        "code = \"import h5py, make_samples as s, os, time\\n"
        "f = h5py.File('\"'\"'live.h5'\"'\"', '\"'\"'r+'\"'\"', libver='\"'\"'latest'\"'\"')\\n"
        "d = f['\"'\"'entry/data/data'\"'\"']\\n"
        "f.swmr_mode = True\\n"
        "n = d.shape[0]\\n"
        "d.resize(n + 2, axis=0)\\n"
        "d[n:] = s.pattern(2, '\"'\"'u2'\"'\"', n)\\n"
        "d.flush(); f.flush()\\n"
        "open('\"'\"'ready'\"'\"', '\"'\"'w'\"'\"').close()\\n"
        "end = time.time() + 20\\n"
        "while os.path.exists('\"'\"'ready'\"'\"') and time.time() < end: time.sleep(0.01)\\n\"\n"
        "subprocess.Popen([sys.executable, \"-c\", code])\n"
        "while not os.path.exists(\"ready\"): time.sleep(0.01)");
    file->update();
    expectFrames(*file, before + 2);
    EXPECT_EQ(open("live.h5")->frameCount(), before + 2);
    fs::remove(path("ready"));
}

TEST_F(Hdf5Series, UpdateOfADamagedMasterKeepsWhatWasKnown)
{
    python("s.master(\"hurt\", [2, 2])");
    const auto file = open("hurt_master.h5");
    fs::resize_file(path("hurt_master.h5"), 100);
    file->update();
    EXPECT_EQ(file->frameCount(), 4u);
}

class Hdf5Layouts : public Samples<Hdf5Layouts> {
public:
    static constexpr const char* Group = "layouts";
};

TEST_F(Hdf5Layouts, ImagesAreFoundWhereverTheyLie)
{
    const SeriesCase cases[] = {
        {"entry1.h5", 3},         {"default.h5", 3},    {"signal.h5", 3},  {"signal_missing.h5", 3},
        {"old_entry_data.h5", 3}, {"old_blocks.h5", 5}, {"lima.h5", 3},    {"cxi.h5", 3},
        {"detector.h5", 3},       {"exchange.h5", 3},   {"largest.h5", 3}, {"soft.h5", 3},
        {"loops.h5", 3},
    };
    for (const SeriesCase& each : cases) {
        SCOPED_TRACE(each.name);
        const auto file = open(each.name);
        ASSERT_EQ(file->frameCount(), each.frames);
        for (std::size_t f = 0; f < each.frames; ++f)
            EXPECT_EQ(differenceFrom<unsigned short>(file->frame(f), f), "");
    }
    const auto blocks = open("block_in_file.h5");
    ASSERT_EQ(blocks->frameCount(), 4u);
    EXPECT_EQ(differenceFrom<unsigned short>(blocks->frame(3), 0), "");
}

TEST_F(Hdf5Layouts, FilesWithoutImagesSayWhatIsWrong)
{
    const std::pair<const char*, const char*> cases[] = {
        {"nothing.h5", "holds no images"},  {"rank5.h5", "holds no images"},
        {"compound.h5", "holds no images"}, {"text.h5", "holds no images"},
        {"empty.h5", "no frames yet"},      {"loop_only.h5", "circle"},
    };
    for (const auto& [name, reason] : cases) {
        const std::string message = messageOf([&] { open(name); });
        EXPECT_THAT(message, StartsWith("HDF5: ")) << name;
        EXPECT_THAT(message, HasSubstr(reason)) << name;
        EXPECT_THAT(message, HasSubstr(path(name)));
    }
}

}  // namespace tarvik::tests
