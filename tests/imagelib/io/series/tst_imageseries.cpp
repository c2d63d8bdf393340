// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Series of real files: opening, stepping, growing and failing.
#include "imagelib/io/MImageSeries.h"

#include "tests/support/EdfText.h"
#include "tests/support/TempFolder.h"

#include <boost/optional/optional_io.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace morvend;
using imglib::MImage;
using imglib::MImageSeries;
using tarvik::tests::edfFrame;
using tarvik::tests::edfFrames;
using testing::HasSubstr;

namespace {

class SeriesOfFiles : public testing::Test {
protected:
    int valueAt(std::size_t number) const { return series.at(number).pixel<int>(0, 0, -1); }
    std::vector<int> numbers() const
    {
        std::vector<int> all;
        for (int number = series.first(); number >= 0; number = series.next(number))
            all.push_back(number);
        return all;
    }
    template <class Exception>
    std::string failureAt(std::size_t number) const
    {
        try {
            series.at(number);
        } catch (const Exception& error) {
            return error.what();
        }
        return "no failure";
    }
    /// Replaces a file as careful writers do: the new one is complete when it gets the name.
    void replace(const std::string& name, const std::string& content) const
    {
        folder.write("new", content);
        std::filesystem::rename(folder / "new", folder / name);
    }

    tarvik::tests::TempFolder folder;
    MImageSeries series{0};
};

}  // namespace

TEST_F(SeriesOfFiles, NumberedFilesAreOneSeriesFromAnyOfThem)
{
    for (const int number : {2, 3, 10})
        folder.write("x_" + std::to_string(number) + ".edf", edfFrames({100 + number}));
    for (const int opened : {2, 10, 3}) {
        EXPECT_EQ(series.open(folder / ("x_" + std::to_string(opened) + ".edf")), opened);
        EXPECT_EQ(numbers(), (std::vector<int>{2, 3, 10}));
        EXPECT_EQ(series.first(), 2);
        EXPECT_EQ(series.last(), 10);
        EXPECT_EQ(series.formatName(), "EDF");
        for (const std::size_t number : {2u, 3u, 10u}) {
            EXPECT_EQ(valueAt(number), 100 + int(number));
            EXPECT_EQ(series.pathToImage(number),
                      folder / ("x_" + std::to_string(number) + ".edf"));
            EXPECT_EQ(series[number].optionalData().imageDescription(),
                      "x_" + std::to_string(number) + ".edf");
        }
    }
}

TEST_F(SeriesOfFiles, OneFileAloneHasOneNumber)
{
    EXPECT_EQ(series.open(folder.write("lone.edf", edfFrames({5}))), 0);
    EXPECT_EQ(numbers(), std::vector<int>{0});
    EXPECT_EQ(valueAt(0), 5);
    EXPECT_EQ(series.at(0).optionalData().imageDescription(), std::string("lone.edf"));
    EXPECT_EQ(series.open(folder.write("one_007.edf", edfFrames({6}))), 7);
    EXPECT_EQ(numbers(), std::vector<int>{7});
    EXPECT_EQ(series.open(folder.write("x_20240115123456789.edf", edfFrames({8}))), 0);
    EXPECT_EQ(valueAt(0), 8);
}

TEST_F(SeriesOfFiles, FramesOfOneFileCountFromZeroWhateverItsNumber)
{
    folder.write("x_0004.edf", edfFrames({1}));
    EXPECT_EQ(series.open(folder.write("x_0005.edf", edfFrames({50, 51, 52}))), 0);
    EXPECT_EQ(numbers(), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(valueAt(1), 51);
    EXPECT_EQ(series.pathToImage(2), folder / "x_0005.edf");
    EXPECT_EQ(series.at(2).optionalData().imageDescription(), std::string("x_0005.edf - image 2"));
    EXPECT_THROW(series.at(3), MOutOfRangeException);
    EXPECT_THROW(series.pathToImage(3), MOutOfRangeException);
}

TEST_F(SeriesOfFiles, AGapNamesTheMissingFileAndTheSeriesGoesOn)
{
    series.open(folder.write("x_0001.edf", edfFrames({1})));
    folder.write("x_0004.edf", edfFrames({4}));
    series.update();
    EXPECT_EQ(numbers(), (std::vector<int>{1, 4}));
    EXPECT_THAT(failureAt<MNoFileAccessException>(2), HasSubstr(folder / "x_0002.edf"));
    EXPECT_EQ(valueAt(4), 4);
    EXPECT_EQ(series.pathToImage(2), folder / "x_0002.edf");
}

TEST_F(SeriesOfFiles, BeyondTheEndIsOutOfRange)
{
    series.open(folder.write("x_0003.edf", edfFrames({3})));
    EXPECT_THAT(failureAt<MOutOfRangeException>(4), HasSubstr(folder / "x_0004.edf"));
    EXPECT_THAT(failureAt<MOutOfRangeException>(0), HasSubstr("from 3 to 3"));
    EXPECT_THROW(series.at(std::size_t(1) << 40), MOutOfRangeException);
    EXPECT_THROW(series.at(std::size_t(-1)), MOutOfRangeException);
    EXPECT_EQ(valueAt(3), 3);
}

TEST_F(SeriesOfFiles, ADamagedFileIsNamedAndTheSeriesGoesOn)
{
    series.open(folder.write("x_1.edf", edfFrames({1})));
    folder.write("x_2.edf", edfFrames({2}).substr(0, 1026));
    folder.write("x_3.edf", "");
    folder.write("x_4.edf", "#!/bin/sh\n");
    folder.write("x_5.edf", edfFrames({5}));
    series.update();
    for (const std::size_t number : {2u, 3u, 4u})
        EXPECT_THAT(failureAt<MException>(number),
                    HasSubstr(folder / ("x_" + std::to_string(number) + ".edf")));
    EXPECT_EQ(valueAt(5), 5);
    EXPECT_EQ(numbers(), (std::vector<int>{1, 2, 3, 4, 5}));
}

TEST_F(SeriesOfFiles, NewFilesAreSeenByUpdateAndReadableBefore)
{
    series.open(folder.write("x_08.edf", edfFrames({8})));
    folder.write("x_09.edf", edfFrames({9}));
    folder.write("x_10.edf", edfFrames({10}));
    EXPECT_EQ(series.last(), 8);
    EXPECT_EQ(valueAt(9), 9);
    series.update();
    EXPECT_EQ(series.last(), 10);
    std::filesystem::remove(folder / "x_08.edf");
    series.update();
    EXPECT_EQ(series.first(), 9);
    EXPECT_EQ(series.last(), 10);
}

TEST_F(SeriesOfFiles, AFolderThatVanishesLeavesWhatIsKnown)
{
    std::filesystem::create_directory(folder / "run");
    series.open(folder.write("run/x_1.edf", edfFrames({1})));
    std::filesystem::remove_all(folder / "run");
    series.update();
    EXPECT_EQ(numbers(), std::vector<int>{1});
    EXPECT_THAT(failureAt<MException>(1), HasSubstr(folder / "run/x_1.edf"));
}

TEST_F(SeriesOfFiles, RewrittenFilesShowTheirNewContent)
{
    for (const std::string name : {"x_0.edf", "lone.edf"}) {
        series.open(folder.write(name, edfFrames({1})));
        EXPECT_EQ(valueAt(0), 1);
        replace(name, edfFrames({2}));
        EXPECT_EQ(valueAt(0), 2) << name;
        series.open(folder / name);
        replace(name, edfFrames({3}));
        series.update();
        EXPECT_EQ(valueAt(0), 3) << name;
    }
}

TEST_F(SeriesOfFiles, AFileOfFramesGrows)
{
    series.open(folder.write("scan.edf", edfFrames({1})));
    EXPECT_EQ(series.last(), 0);
    folder.write("scan.edf", edfFrames({1, 2}));
    series.update();
    EXPECT_EQ(series.last(), 1);
    folder.write("scan.edf", edfFrames({1, 2, 3}));
    series.update();
    EXPECT_EQ(series.last(), 2);
    EXPECT_EQ(valueAt(2), 3);
    EXPECT_EQ(valueAt(0), 1);
}

TEST_F(SeriesOfFiles, AFailedOpenKeepsTheSeriesThatIsOpen)
{
    series.open(folder.write("x_1.edf", edfFrames({1})));
    folder.write("empty_1.edf", "");
    folder.write("text_1.edf", "These are no pixels.");
    folder.write("cut_1.cbf", "###CBF: VERSION 1.5\r\n");
    const std::string bad[] = {"",
                               folder / "missing_1.edf",
                               folder.path(),
                               folder / "empty_1.edf",
                               folder / "text_1.edf",
                               folder / "cut_1.cbf",
                               folder / "x_1.edf/x_2.edf"};
    for (const std::string& path : bad) {
        try {
            series.open(path);
            ADD_FAILURE() << path;
        } catch (const MException& error) {
            EXPECT_THAT(error.what(), HasSubstr(path));
        }
        EXPECT_EQ(series.pathToImage(1), folder / "x_1.edf");
        EXPECT_EQ(valueAt(1), 1);
    }
    EXPECT_THROW(series.open(folder / "empty_1.edf"), MUnknownFormatException);
    EXPECT_THROW(series.open(folder / "text_1.edf"), MUnknownFormatException);
    EXPECT_THROW(series.open(folder / "missing_1.edf"), MNoFileAccessException);
}

TEST_F(SeriesOfFiles, AnUnknownFormatIsToldWithTheKnownOnes)
{
    try {
        series.open(folder.write("x", "?"));
        FAIL();
    } catch (const MUnknownFormatException& error) {
        for (const char* name : {"CBF", "TIFF", "EDF", "HDF5"})
            EXPECT_THAT(error.what(), HasSubstr(name));
    }
}

TEST_F(SeriesOfFiles, TakesNoPushedImage)
{
    series.open(folder.write("x_1.edf", edfFrames({1})));
    EXPECT_THROW(series.pushBack(MImage(1, 1, 2)), MRuntimeException);
    EXPECT_EQ(valueAt(1), 1);
    series.open(25);
    series.pushBack(MImage(1, 1, 2));
    EXPECT_EQ(valueAt(0), 2);
}

TEST_F(SeriesOfFiles, PathsStayValidWhenTheWorkingDirectoryChanges)
{
    const std::filesystem::path before = std::filesystem::current_path();
    folder.write("x_1.edf", edfFrames({1}));
    folder.write("x_2.edf", edfFrames({2}));
    std::filesystem::current_path(folder.path());
    series.open("./x_1.edf");
    std::filesystem::current_path(before);
    EXPECT_EQ(series.pathToImage(1), folder / "x_1.edf");
    EXPECT_EQ(valueAt(2), 2);
}

TEST_F(SeriesOfFiles, ALinkUpwardsIsFollowedAndNotTakenAsText)
{
    std::filesystem::create_directories(folder / "real/deep");
    std::filesystem::create_directory_symlink(folder / "real/deep", folder / "link");
    folder.write("real/x_1.edf", edfFrames({1}));
    folder.write("x_1.edf", edfFrames({99}));
    series.open(folder / "link/../x_1.edf");
    EXPECT_EQ(valueAt(1), 1);
}
