// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames of one container under numbers, with a container that the test controls.
#include "imagelib/io/process/MReaderGoneException.h"
#include "imagelib/io/series/FrameSeries.h"
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

}  // namespace tarvik::tests
