// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series of real files, opening, stepping, growing and failing, and of images that are pushed.
#include "imagelib/io/MImageSeries.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/EdfText.h"

#include <limits>

namespace tarvik::tests {
namespace {

int valueAt(const MImageSeries& series, int number)
{
    return series.at(number).pixel<int>(0, 0, -1);
}

/// Each number with its value, as "1:7 2:8".
std::string shown(const MImageSeries& series)
{
    std::vector<int> forward, backward;
    for (int number = series.next(-1); number >= 0; number = series.next(number))
        forward.push_back(number);
    constexpr int most = std::numeric_limits<int>::max();
    for (int number = series.previous(most); number >= 0; number = series.previous(number))
        backward.insert(backward.begin(), number);
    EXPECT_EQ(forward, backward);
    std::string all;
    for (int number = series.first(); number >= 0; number = series.next(number))
        all += (all.empty() ? "" : " ") + std::to_string(number) + ':' +
               std::to_string(valueAt(series, number));
    return all;
}

class SeriesOfFiles : public testing::Test {
protected:
    std::string write(const std::string& name, std::initializer_list<std::int32_t> frames) const
    {
        return folder.write(name, edfFrames(frames));
    }
    std::string failureAt(int number) const
    {
        return failureOf([&] { series.at(number); });
    }
    std::string descriptionAt(int number) const
    {
        return series.at(number).optionalData().imageDescription().value_or("");
    }

    const TempFolder folder;
    MImageSeries series{0};
};

}  // namespace

TEST_F(SeriesOfFiles, NumberedFilesAreOneSeriesFromAnyOfThem)
{
    for (const int number : {2, 3, 10})
        write("x_" + std::to_string(number) + ".edf", {100 + number});
    for (const int opened : {2, 10, 3}) {
        const std::string name = "x_" + std::to_string(opened) + ".edf";
        EXPECT_EQ(series.open(folder / name), opened);
        EXPECT_EQ(shown(series), "2:102 3:103 10:110");
        EXPECT_EQ(series.first(), 2);
        EXPECT_EQ(series.last(), 10);
        EXPECT_EQ(series.formatName(), "EDF");
        EXPECT_EQ(series.pathToImage(opened), folder / name);
        EXPECT_EQ(descriptionAt(opened), name);
    }
}

TEST_F(SeriesOfFiles, OneFileAloneHasOneNumber)
{
    EXPECT_EQ(series.open(write("lone.edf", {5})), 0);
    EXPECT_EQ(shown(series), "0:5");
    EXPECT_EQ(descriptionAt(0), "lone.edf");
    EXPECT_EQ(series.open(write("one_007.edf", {6})), 7);
    EXPECT_EQ(shown(series), "7:6");
    EXPECT_EQ(series.open(write("x_20240115123456789.edf", {8})), 0);
    EXPECT_EQ(shown(series), "0:8");
}

TEST_F(SeriesOfFiles, FramesOfOneFileCountFromZeroWhateverItsNumber)
{
    write("x_0004.edf", {1});
    EXPECT_EQ(series.open(write("x_0005.edf", {50, 51, 52})), 0);
    EXPECT_EQ(shown(series), "0:50 1:51 2:52");
    EXPECT_EQ(series.pathToImage(2), folder / "x_0005.edf");
    EXPECT_EQ(descriptionAt(2), "x_0005.edf - image 2");
    EXPECT_THROW(series.at(3), MOutOfRangeException);
    EXPECT_THROW(series.pathToImage(3), MOutOfRangeException);
    write("x_0005.edf", {50, 51, 52, 53});
    series.update();
    EXPECT_EQ(shown(series), "0:50 1:51 2:52 3:53");
}

TEST_F(SeriesOfFiles, AGapNamesTheMissingFileAndBeyondTheEndIsOutOfRange)
{
    series.open(write("x_0001.edf", {1}));
    write("x_0004.edf", {4});
    series.update();
    EXPECT_EQ(shown(series), "1:1 4:4");
    EXPECT_THROW(series.at(2), MNoFileAccessException);
    EXPECT_THAT(failureAt(2), HasSubstr(folder / "x_0002.edf"));
    EXPECT_EQ(series.pathToImage(2), folder / "x_0002.edf");
    EXPECT_THAT(failureAt(5), HasSubstr(folder / "x_0005.edf"));
    EXPECT_THAT(failureAt(0), HasSubstr("from 1 to 4"));
    write("x_-001.edf", {9});
    EXPECT_EQ(failureAt(-1), "There is no image -1 in the series, which goes from 1 to 4");
    EXPECT_THROW(series.pathToImage(-1), MOutOfRangeException);
    for (const std::size_t number :
         {std::size_t(0), std::size_t(5), std::size_t(1) << 40, std::size_t(-1)})
        EXPECT_THROW(series.at(number), MOutOfRangeException);
    EXPECT_EQ(valueAt(series, 4), 4);
}

TEST_F(SeriesOfFiles, ADamagedFileIsNamedAndTheSeriesGoesOn)
{
    series.open(write("x_1.edf", {1}));
    folder.write("x_2.edf", edfFrames({2}).substr(0, 1026));
    folder.write("x_3.edf", "");
    folder.write("x_4.edf", "#!/bin/sh\n");
    write("x_5.edf", {5});
    series.update();
    for (const int number : {2, 3, 4})
        EXPECT_THAT(failureAt(number), HasSubstr(folder / ("x_" + std::to_string(number))));
    EXPECT_EQ(valueAt(series, 5), 5);
    EXPECT_EQ(series.next(1), 2);
}

TEST_F(SeriesOfFiles, NewFilesAreSeenByUpdateAndReadableBefore)
{
    std::filesystem::create_directory(folder / "run");
    series.open(write("run/x_08.edf", {8}));
    write("run/x_09.edf", {9});
    write("run/x_10.edf", {10});
    EXPECT_EQ(series.last(), 8);
    EXPECT_EQ(valueAt(series, 9), 9);
    series.update();
    EXPECT_EQ(series.last(), 10);
    std::filesystem::remove(folder / "run/x_08.edf");
    series.update();
    EXPECT_EQ(shown(series), "9:9 10:10");
    // A folder that vanishes leaves what is known.
    std::filesystem::remove_all(folder / "run");
    series.update();
    EXPECT_EQ(series.first(), 9);
    EXPECT_THAT(failureAt(9), HasSubstr(folder / "run/x_09.edf"));
}

TEST_F(SeriesOfFiles, RewrittenFilesShowTheirNewContent)
{
    const auto replace = [&](const std::string& name, std::int32_t value) {
        std::filesystem::rename(write("new", {value}), folder / name);
    };
    for (const std::string name : {"x_0.edf", "lone.edf"}) {
        series.open(write(name, {1}));
        EXPECT_EQ(shown(series), "0:1");
        replace(name, 2);
        EXPECT_EQ(shown(series), "0:2") << name;
        series.open(folder / name);
        replace(name, 3);
        series.update();
        EXPECT_EQ(shown(series), "0:3") << name;
    }
}

TEST_F(SeriesOfFiles, AFailedOpenKeepsTheSeriesThatIsOpen)
{
    series.open(write("x_1.edf", {1}));
    folder.write("empty_1.edf", "");
    folder.write("text_1.edf", "These are no pixels.");
    folder.write("cut_1.cbf", "###CBF: VERSION 1.5\r\n");
    for (const std::string& path :
         {std::string(), folder.path(), folder / "missing_1.edf", folder / "empty_1.edf",
          folder / "text_1.edf", folder / "cut_1.cbf", folder / "x_1.edf/x_2.edf"}) {
        const std::string text = failureOf([&] { series.open(path); });
        EXPECT_NE(text, "no failure");
        EXPECT_THAT(text, HasSubstr(path));
        EXPECT_EQ(series.pathToImage(1), folder / "x_1.edf");
        EXPECT_EQ(shown(series), "1:1");
    }
    EXPECT_THROW(series.open(folder / "empty_1.edf"), MUnknownFormatException);
    EXPECT_THROW(series.open(folder / "text_1.edf"), MUnknownFormatException);
    EXPECT_THROW(series.open(folder / "missing_1.edf"), MNoFileAccessException);
    for (const char* name : {"CBF", "TIFF", "EDF", "HDF5"})
        EXPECT_THAT(failureOf([&] { series.open(folder / "text_1.edf"); }), HasSubstr(name));
}

TEST_F(SeriesOfFiles, PathsStayValidWhenTheWorkingDirectoryChanges)
{
    const std::filesystem::path before = std::filesystem::current_path();
    write("x_1.edf", {1});
    write("x_2.edf", {2});
    std::filesystem::current_path(folder.path());
    series.open("./x_1.edf");
    std::filesystem::current_path(before);
    EXPECT_EQ(series.pathToImage(1), folder / "x_1.edf");
    EXPECT_EQ(valueAt(series, 2), 2);
}

TEST_F(SeriesOfFiles, ALinkUpwardsIsFollowedAndNotTakenAsText)
{
    std::filesystem::create_directories(folder / "real/deep");
    std::filesystem::create_directory_symlink(folder / "real/deep", folder / "link");
    write("real/x_1.edf", {1});
    write("x_1.edf", {99});
    series.open(folder / "link/../x_1.edf");
    EXPECT_EQ(shown(series), "1:1");
}

TEST_F(SeriesOfFiles, TakesNoPushedImage)
{
    series.open(write("x_1.edf", {1}));
    EXPECT_THROW(series.pushBack(MImage(1, 1, 2)), MRuntimeException);
    EXPECT_EQ(shown(series), "1:1");
    series.open(25);
    series.pushBack(MImage(1, 1, 2));
    EXPECT_EQ(shown(series), "0:2");
}

TEST(SeriesInMemory, IsEmptyUntilTheFirstImage)
{
    MImageSeries series(25);
    EXPECT_TRUE(series.empty());
    EXPECT_EQ(series.first(), -1);
    EXPECT_EQ(series.last(), -1);
    EXPECT_EQ(series.next(-1), -1);
    EXPECT_EQ(series.formatName(), "");
    EXPECT_THROW(series.at(0), MOutOfRangeException);
    series.update();

    series.pushBack(MImage(1, 1, 7));
    EXPECT_FALSE(series.empty());
    EXPECT_EQ(shown(series), "0:7");
    EXPECT_EQ(series.last(), 0);
    EXPECT_EQ(series[0].pixel<int>(0, 0, -1), 7);
    EXPECT_EQ(series.formatName(), "memory");
}

TEST(SeriesInMemory, TheOldestImagesGoAndNumbersStay)
{
    MImageSeries series(3);
    for (int value = 10; value < 15; ++value)
        series.pushBack(MImage(1, 1, value));
    EXPECT_EQ(shown(series), "2:12 3:13 4:14");
    EXPECT_EQ(series.last(), 4);
    for (const std::size_t number : {std::size_t(1), std::size_t(5), std::size_t(-1)})
        EXPECT_THROW(series.at(number), MOutOfRangeException);
    EXPECT_THROW(series.pathToImage(3), MRuntimeException);

    MImageSeries single(0);
    single.pushBack(MImage(1, 1, 1));
    single.pushBack(MImage(1, 1, 2));
    EXPECT_EQ(shown(single), "1:2");
}

TEST(SeriesInMemory, OpeningByABoundStartsAnew)
{
    MImageSeries series(1);
    series.pushBack(MImage(1, 1, 1));
    series.open(2);
    EXPECT_TRUE(series.empty());
    for (int value = 5; value < 8; ++value)
        series.pushBack(MImage(1, 1, value));
    EXPECT_EQ(shown(series), "1:6 2:7");
    EXPECT_THROW(series.open(-1), MBadParameterException);
    EXPECT_EQ(series.last(), 2);
}

}  // namespace tarvik::tests
