// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of one container under numbers, with a container that the test controls, and which files
// belong to the series of a file name.
#include "imagelib/image/MException.h"
#include "imagelib/io/series/FrameSeries.h"
#include "imagelib/io/series/SeriesFinder.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/Processes.h"

#include <limits>

namespace tarvik::tests {

namespace {

/// A container whose frame at position p has the pixel 100 + p.
class Container : public ImageFile {
public:
    std::size_t frames = 3;
    std::size_t framesAfterUpdate = 3;
    std::string description;
    std::string main;

    const char* format() const override { return "HDF5"; }
    std::size_t frameCount() const override { return frames; }
    std::size_t openedFrame() const override { return 2; }
    int firstNumber() const override { return 1; }
    std::string mainPath() const override { return main; }
    void update() override { frames = framesAfterUpdate; }
    std::string framePath(std::size_t position) const override
    {
        return "/data/x_data_" + std::to_string(position) + ".h5";
    }
    MImage frame(std::size_t position) const override
    {
        MImage image(1, 1, static_cast<int>(100 + position));
        if (!description.empty())
            image.optionalData().setImageDescription(description);
        return image;
    }
};

class FramesOfAContainer : public testing::Test {
protected:
    FrameSeries series()
    {
        return FrameSeries(path, std::move(owned), [this](const std::string&) { return reopen(); });
    }
    /// The file that was there lives on, as it does while a reader has it open.
    void replaceFile()
    {
        std::filesystem::rename(path, folder / std::to_string(++replacements));
        folder.write("x_master.h5", "another");
    }

    const TempFolder folder;
    const std::string path = folder.write("x_master.h5", "?");
    std::unique_ptr<Container> owned = std::make_unique<Container>();
    Container* const container = owned.get();
    std::function<std::unique_ptr<ImageFile>()> reopen;
    int replacements = 0;
};

std::unique_ptr<ImageFile> longer()
{
    auto container = std::make_unique<Container>();
    container->frames = 7;
    return container;
}

int pixelOf(const MImage& image) { return image.pixel<int>(0, 0, -1); }

}  // namespace

TEST_F(FramesOfAContainer, CountFromItsFirstNumber)
{
    const FrameSeries frames = series();
    EXPECT_EQ(frames.first(), 1);
    EXPECT_EQ(frames.last(), 3);
    EXPECT_EQ(frames.openedNumber(), 3);
    EXPECT_EQ(pixelOf(frames.at(1)), 100);
    EXPECT_EQ(pixelOf(frames.at(3)), 102);
    EXPECT_EQ(frames.pathToImage(2), "/data/x_data_1.h5");
    for (const int number : {0, 4, std::numeric_limits<int>::max()}) {
        EXPECT_THROW(frames.at(number), MOutOfRangeException);
        EXPECT_THROW(frames.pathToImage(number), MOutOfRangeException);
    }
}

TEST_F(FramesOfAContainer, AreNamedByFileAndNumberUnlessTheFileNamesThem)
{
    const FrameSeries frames = series();
    const auto name = [&](int number) {
        return frames.at(number).optionalData().imageDescription().value_or("");
    };
    EXPECT_EQ(name(2), "x_master.h5 - image 2");
    container->main = "/data/other_master.h5";
    EXPECT_EQ(name(2), "other_master.h5 - image 2");
    container->main.clear();
    container->frames = 1;
    EXPECT_EQ(name(1), "x_master.h5");
    container->description = "Lysozyme";
    EXPECT_EQ(name(1), "Lysozyme");
}

TEST_F(FramesOfAContainer, AppearWhenTheWriterHasAddedThem)
{
    FrameSeries frames = series();
    container->framesAfterUpdate = 12;
    EXPECT_EQ(frames.last(), 3);
    folder.write("x_master.h5", "written to, and followed by its reader");
    frames.update();
    EXPECT_EQ(frames.last(), 12);
    EXPECT_EQ(pixelOf(frames.at(12)), 111);
}

TEST_F(FramesOfAContainer, StayWhenTheFileIsGoneOrReplacedByOneThatIsRefusedOrEndsItsReader)
{
    FrameSeries frames = series();
    std::filesystem::rename(path, folder / "0");
    frames.update();
    std::filesystem::rename(folder / "0", path);
    int opened = 0;
    const auto looksAfter = [&](auto failure) {
        reopen = [&opened, failure]() -> std::unique_ptr<ImageFile> {
            ++opened;
            throw failure;
        };
        replaceFile();
        for (int look = 0; look < 3; ++look)
            frames.update();
        EXPECT_EQ(frames.last(), 3);
        EXPECT_EQ(pixelOf(frames.at(1)), 100);
    };
    testing::internal::CaptureStderr();
    looksAfter(MRuntimeException("incomplete"));
    looksAfter(MReaderGoneException("the reader has crashed"));
    looksAfter(MTimeoutException("the reader hangs"));
    EXPECT_EQ(opened, 3);  // once for each file
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "WARNING: the reader has crashed\n");
    reopen = longer;
    frames.update();
    EXPECT_EQ(frames.last(), 3);
    replaceFile();
    frames.update();
    EXPECT_EQ(frames.last(), 7);
}

TEST_F(FramesOfAContainer, ComeLaterWhenTheirFileWaitedForAnother)
{
    FrameSeries frames = series();
    bool complete = false;
    reopen = [&complete]() -> std::unique_ptr<ImageFile> {
        if (!complete)
            throw MNoFileAccessException("a data file is missing");
        return longer();
    };
    replaceFile();
    frames.update();
    complete = true;
    EXPECT_TRUE(waitFor([&] {
        frames.update();
        return frames.last() == 7;
    }));
}

TEST_F(FramesOfAContainer, MoreThanAnIntCanCountEndAtTheLastInt)
{
    container->frames = std::size_t(1) << 33;
    const FrameSeries frames = series();
    EXPECT_EQ(frames.last(), std::numeric_limits<int>::max() - 1);
    EXPECT_EQ(frames.next(frames.last()), -1);
}

TEST(FilesOfASeries, AreFoundFromTheOpenedOne)
{
    // The opened file, the other files of its folder, and the members by number.
    for (const auto& row : rowsOf(R"(
x_00002.cbf | x_00003.cbf/x_00001.cbf | 1 x_00001.cbf/2 x_00002.cbf/3 x_00003.cbf
x_9.cbf | x_10.cbf/x_1.cbf/x_100.cbf | 1 x_1.cbf/9 x_9.cbf/10 x_10.cbf/100 x_100.cbf
x_1.cbf | x_002.cbf/x_03.cbf | 1 x_1.cbf/2 x_002.cbf/3 x_03.cbf
x_0002.cbf | x_1.cbf/x_0001.cbf/x_2.cbf/x_02.cbf | 1 x_0001.cbf/2 x_0002.cbf
x_1.cbf | x_0001.cbf/x_2.cbf/x_0002.cbf/x_02.cbf | 1 x_1.cbf/2 x_2.cbf
x_0001.cbf | x_1.cbf/x_9000.cbf/x_09000.cbf | 1 x_0001.cbf/9000 x_9000.cbf
x_0007.cbf | x_0000.cbf/x_0003.cbf | 0 x_0000.cbf/3 x_0003.cbf/7 x_0007.cbf
x_999.cbf | x_998.cbf/x_1000.cbf | 998 x_998.cbf/999 x_999.cbf/1000 x_1000.cbf
lyso_1_0002.cbf | lyso_1_0001.cbf/lyso_2_0001.cbf/lyso_12_0001.cbf \
    | 1 lyso_1_0001.cbf/2 lyso_1_0002.cbf
run7-002.tif | run7-001.tif/run8-003.tif/run-004.tif | 1 run7-001.tif/2 run7-002.tif
00001.tif | 00002.tif/x00003.tif | 1 00001.tif/2 00002.tif
x_001_dark.edf | x_002_dark.edf/x_003.edf | 1 x_001_dark.edf/2 x_002_dark.edf
x_01.cbf.gz | x_02.cbf.gz/x_02.cbf/x_03.cbf.bz2 | 1 x_01.cbf.gz/2 x_02.cbf.gz
x_01.mar345 | x_02.mar345/x_02.mar346 | 1 x_01.mar345/2 x_02.mar345
x.0001 | x.0002/x.cbf | 1 x.0001/2 x.0002
x_1.cbf | x_2.cbf.tmp/.x_3.cbf/x_.cbf/x_4a.cbf/X_5.cbf/x_6.CBF/x_-7.cbf/x_ 8.cbf/xx_9.cbf \
    | 1 x_1.cbf
a b%1_ä 01.cbf | a b%1_ä 02.cbf | 1 a b%1_ä 01.cbf/2 a b%1_ä 02.cbf
x_2147483647.cbf | x_2147483646.cbf/x_2147483648.cbf/x_99999999999999999999999.cbf \
    | 2147483646 x_2147483646.cbf/2147483647 x_2147483647.cbf
x_00000000000000001.cbf | x_00000000000000002.cbf \
    | 1 x_00000000000000001.cbf/2 x_00000000000000002.cbf
x_20240115123456789.cbf | x_20240115123456790.cbf |
x.cbf | y.cbf |
x.h5 | y.h5 |
)")) {
        SCOPED_TRACE(row.at(0) + " beside " + row.at(1));
        const TempFolder folder;
        folder.write(row[0], "");
        std::istringstream others(row[1]);
        for (std::string name; std::getline(others, name, '/');)
            folder.write(name, "");
        const auto finder = SeriesFinder::of(folder / row[0]);
        ASSERT_EQ(finder.has_value(), !row.at(2).empty());
        if (!finder)
            continue;
        std::string members;
        for (const SeriesFinder::Member& member : finder->list()) {
            const std::filesystem::path path = finder->path(member);
            EXPECT_TRUE(std::filesystem::exists(path));
            members += (members.empty() ? "" : "/") + std::to_string(member.number) + ' ' +
                       path.filename().string();
        }
        EXPECT_EQ(members, row[2]);
        EXPECT_EQ(finder->path(finder->opened()), folder / row[0]);
    }
}

TEST(FilesOfASeries, FoldersPlayNoPart)
{
    const TempFolder folder;
    folder.write("x_1.cbf", "");
    std::filesystem::create_directory(folder / "x_2.cbf");
    EXPECT_EQ(SeriesFinder::of(folder / "x_1.cbf")->list().size(), 1u);
    std::filesystem::create_directory(folder / "run_0012");
    EXPECT_FALSE(SeriesFinder::of(folder / "run_0012/x.cbf"));
    folder.write("run_0012/x_5.cbf", "");
    EXPECT_EQ(SeriesFinder::of(folder / "run_0012/x_5.cbf")->list(),
              (std::vector<SeriesFinder::Member>{{5, 1}}));
    EXPECT_TRUE(SeriesFinder::of("/nowhere at all/x_1.cbf")->list().empty());
}

}  // namespace tarvik::tests
