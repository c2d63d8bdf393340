// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The writer of a series, its files as h5py reads them, and disks that fail.
#include "imagelib/io/MImageSeries.h"
#include "logic/detector/HalvoFileWriterWorker.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaitFor.h"

#include "simulator/Frames.h"

#include <QFile>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <sys/resource.h>

namespace {

using tarvik::tests::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int Width = 96, Height = 80;
constexpr std::int64_t FrameBytes = std::int64_t(4) * Width * Height;
constexpr std::int64_t Plenty = std::int64_t(1) << 40;

/// What h5py finds in a series: the first pixel of each frame, wavelength and sum of the mask.
std::string content(const std::string& master)
{
    const std::string script = R"(import h5py, sys
f = h5py.File(sys.argv[1])
frames = [int(i[0, 0]) for k in sorted(f["entry/data"]) for i in f["entry/data"][k]]
beam, mask = f.get("entry/instrument/beam/wavelength"), f.get("entry/instrument/detector/pixel_mask")
print(*frames, "%.2f" % beam[()] if beam else "", mask[()].sum() if mask else "", end="")
)";
    const std::string command = TARVIK_PYTHON " -c '" + script + "' '" + master + "' 2>&1";
    FILE* const python = ::popen(command.c_str(), "r");
    std::string text;
    char bytes[512];
    while (const std::size_t count = std::fread(bytes, 1, sizeof bytes, python))
        text.append(bytes, count);
    ::pclose(python);
    return text;
}

class Writer : public testing::Test {
protected:
    void begin(const std::string& name, int images)
    {
        writer.start(QFile::decodeName((folder / name).c_str()), images);
        writer.initSeries(header, 1);
    }
    void add(int frame, int width = Width)
    {
        const ImageData image(width, Height, unsigned(100 + frame));
        ASSERT_TRUE(budget->take(std::int64_t(image.dataSize()), false));
        writer.add(image, 1, frame);
    }
    std::vector<std::string> takeErrors()
    {
        std::vector<std::string> texts;
        for (const auto& each : errors)
            texts.push_back(each[0].toString().toStdString());
        errors.clear();
        return texts;
    }

    const TempFolder folder;
    std::int64_t diskFree = Plenty;
    const std::shared_ptr<FrameBudget> budget = std::make_shared<FrameBudget>(Plenty);
    const std::shared_ptr<SeriesMeter> meter = std::make_shared<SeriesMeter>();
    HalvoFileWriterWorker writer{budget, meter, [this](const QString&) { return diskFree; }};
    QSignalSpy errors{&writer, &HalvoFileWriterWorker::error};
    QSignalSpy ends{&writer, &HalvoFileWriterWorker::seriesFinished};
    OptionalData header;
};

TEST_F(Writer, WritesEachFrameAndEndsByTheirNumber)
{
    struct Row {
        const char* name;
        int images;
        std::vector<int> frames;
        std::vector<std::string> errors;
        std::string content;
        int ends;
    };
    header.set_wavelength(1.54F);
    header.set_pixel_mask(morvend::imglib::MImage(Width, Height, 1U));
    for (const Row& row :
         {Row{"whole_master.h5", 3, {0, 1, 2}, {}, "100 101 102 1.54 7680", 1},
          {"endless_master.h5", 0, {0, 1}, {}, "100 101 1.54 7680", 0},
          {"gap_master.h5", 6, {0, 3, 4}, {"Lost 2 frames"}, "100 103 104 1.54 7680", 0},
          {"gapatend_master.h5", 4, {0, 3}, {"Lost 2 frames"}, "100 103 1.54 7680", 1},
          // Odd, but so it is counted where the first frame is missing.
          {"late_master.h5", 9, {1, 2}, {"Lost 2 frames"}, "101 102 1.54 7680", 0},
          {"M\xc3\xbcller_master.h5", 1, {0}, {}, "100 1.54 7680", 1}}) {
        SCOPED_TRACE(row.name);
        ends.clear();
        begin(row.name, row.images);
        for (const int frame : row.frames)
            add(frame);
        EXPECT_EQ(takeErrors(), row.errors);
        EXPECT_EQ(ends.size(), row.ends);
        EXPECT_EQ(meter->progress().written, std::int64_t(row.frames.size()));
        writer.finish();
        EXPECT_EQ(ends.size(), row.ends + 1);
        EXPECT_EQ(content(folder / row.name), row.content);
    }
    EXPECT_EQ(budget->taken(), 0);
}

TEST_F(Writer, FramesGoIntoTheFileAsTheyWereSent)
{
    tarvik::simulator::Frames simulated({Width, Height});
    const QByteArray sent = simulated.frame(0).bytes;
    const auto* const bytes = reinterpret_cast<const std::byte*>(sent.constData());
    begin("x_master.h5", 2);
    for (const bool packed : {true, false}) {
        ImageData frame(simulated.pixels(packed ? 0 : 1));
        if (packed)
            frame.packed =
                std::make_shared<const std::vector<std::byte>>(bytes, bytes + sent.size());
        budget->take(FrameBytes, false);
        writer.add(frame, 1, packed ? 0 : 1);
    }
    EXPECT_THAT(takeErrors(), IsEmpty());
    EXPECT_EQ(meter->progress().bytes, sent.size() + FrameBytes);
    morvend::imglib::MImageSeries series(1);
    series.open(folder / "x_master.h5");
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(morvend::imglib::samePixels(series.at(i + 1), simulated.pixels(i)));
}

TEST_F(Writer, WithoutAFileEachFrameSaysSo)
{
    writer.start(QString::fromStdString(folder / "x_master.h5"), 0);
    add(1);
    add(2);
    EXPECT_THAT(takeErrors(),
                ElementsAre("Cannot add image before new file has been started", "Lost 2 frames",
                            "Cannot add image before new file has been started"));
    EXPECT_EQ(budget->taken(), 0);
    EXPECT_THAT(content(folder / "x_master.h5"), HasSubstr("Error"));
}

TEST_F(Writer, FramesOfAnotherSizeAreLeftOut)
{
    header.set_pixel_mask(morvend::imglib::MImage(3, 3, 1U));  // of another size too
    begin("x_master.h5", 4);
    add(0);
    add(1, 10);
    add(2, 10);
    EXPECT_THAT(takeErrors(), ElementsAre(StartsWith("Frame 1 is not written: ")));
    add(3);
    EXPECT_EQ(content(folder / "x_master.h5"), "100 103  ");
}

TEST_F(Writer, FramesCanBeReadWhileTheSeriesPauses)
{
    begin("x_master.h5", 9);
    add(0);
    EXPECT_EQ(content(folder / "x_master.h5"), "100  ");
    add(1);
    EXPECT_TRUE(waitFor([&] { return content(folder / "x_master.h5") == "100 101  "; }));
}

TEST_F(Writer, AFullDiskIsSaidOnceAndKeepsWhatIsWritten)
{
    diskFree = (std::int64_t(8) << 20) + FrameBytes;
    begin("x_master.h5", 1000);
    add(0);
    EXPECT_THAT(takeErrors(), ElementsAre(StartsWith("The series needs up to 29.30 MiB, the disk "
                                                     "has 8.03 MiB: ")));
    add(1);
    diskFree -= 1;
    for (int i = 2; i < 6; ++i)
        add(i);
    EXPECT_THAT(takeErrors(),
                ElementsAre("The disk is full: frames from 2 on are not written; 2 are in " +
                            (folder / "x_master.h5")));
    EXPECT_EQ(content(folder / "x_master.h5"), "100 101  ");
    EXPECT_EQ(meter->progress().written, 2);
    EXPECT_FALSE(meter->progress().fileOpen);
    EXPECT_EQ(budget->taken(), 0);
}

TEST_F(Writer, ADiskThatFailsIsSaidOnceAndKeepsWhatIsWritten)
{
    begin("x_master.h5", 1000);
    // A limit for files stands for a quota that nobody knows of beforehand.
    struct rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    struct rlimit small = limit;
    small.rlim_cur = 10 * FrameBytes + FrameBytes / 2 + (1 << 16);
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    for (int i = 0; i < 20; ++i)
        add(i);
    writer.finish();
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, before);
    const auto said = takeErrors();
    ASSERT_EQ(said.size(), 1U) << testing::PrintToString(said);
    EXPECT_THAT(said[0], HasSubstr("File too large"));
    EXPECT_THAT(said[0], HasSubstr("frames from 10 on are not written; 10 are in"));
    EXPECT_EQ(content(folder / "x_master.h5"), "100 101 102 103 104 105 106 107 108 109  ");
}

TEST_F(Writer, NoFileIsReplaced)
{
    const auto text = [this](const char* name) {
        std::stringstream all;
        all << std::ifstream(folder / name).rdbuf();
        return all.str();
    };
    folder.write("x_master.h5", "old");
    folder.write("x_001_data_000002.h5", "old");
    begin("x_master.h5", 1);
    add(0);
    EXPECT_THAT(takeErrors(),
                ElementsAre((folder / "x_master.h5") + " exists by now: the series is written to " +
                            (folder / "x_002_master.h5")));
    EXPECT_EQ(content(folder / "x_002_master.h5"), "100  ");
    for (const char* appears : {"y_master.h5", "z_data_000001.h5"}) {
        begin(std::string(1, *appears) + "_master.h5", 2);
        folder.write(appears, "old");
        add(0);
        add(1);
        EXPECT_THAT(takeErrors(), ElementsAre(HasSubstr("File exists")));
        EXPECT_EQ(text(appears), "old");
    }
    EXPECT_EQ(text("x_master.h5") + text("x_001_data_000002.h5"), "oldold");
}

TEST_F(Writer, AFolderThatIsGoneIsSaidOnce)
{
    begin("gone/x_master.h5", 2);
    add(0);
    add(1);
    EXPECT_THAT(takeErrors(), ElementsAre(HasSubstr("cannot create file")));
    EXPECT_EQ(ends.size(), 1);
}

}  // namespace
