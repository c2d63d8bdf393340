// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which files belong to the series of a file name.
#include "imagelib/io/series/SeriesFinder.h"

#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using morvend::imglib::SeriesFinder;
using tarvik::tests::TempFolder;

namespace {

struct FolderCase {
    const char* name;
    std::vector<std::string> files;    // in the folder
    std::string opened;                // one of them
    std::vector<std::string> members;  // expected, by number
    std::vector<int> numbers;
};

class FilesOfASeries : public testing::TestWithParam<FolderCase> {};

}  // namespace

TEST_P(FilesOfASeries, AreFoundFromTheOpenedOne)
{
    const FolderCase& row = GetParam();
    const TempFolder folder;
    for (const std::string& file : row.files)
        folder.write(file, "");
    const auto finder = SeriesFinder::of(folder / row.opened);
    ASSERT_EQ(finder.has_value(), !row.members.empty());
    if (!finder)
        return;
    std::vector<std::string> names;
    std::vector<int> numbers;
    for (const SeriesFinder::Member& member : finder->list()) {
        names.push_back(std::filesystem::path(finder->path(member)).filename().string());
        numbers.push_back(member.number);
        EXPECT_TRUE(std::filesystem::exists(finder->path(member)));
    }
    EXPECT_EQ(names, row.members);
    EXPECT_EQ(numbers, row.numbers);
    EXPECT_EQ(finder->path(finder->opened()), folder / row.opened);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FilesOfASeries,
    testing::Values(FolderCase{"Padded",
                               {"x_00003.cbf", "x_00001.cbf", "x_00002.cbf"},
                               "x_00002.cbf",
                               {"x_00001.cbf", "x_00002.cbf", "x_00003.cbf"},
                               {1, 2, 3}},
                    FolderCase{"UnpaddedSortsByNumber",
                               {"x_10.cbf", "x_9.cbf", "x_1.cbf", "x_100.cbf"},
                               "x_9.cbf",
                               {"x_1.cbf", "x_9.cbf", "x_10.cbf", "x_100.cbf"},
                               {1, 9, 10, 100}},
                    FolderCase{"PaddedAndUnpaddedMixed",
                               {"x_1.cbf", "x_002.cbf", "x_03.cbf"},
                               "x_1.cbf",
                               {"x_1.cbf", "x_002.cbf", "x_03.cbf"},
                               {1, 2, 3}},
                    FolderCase{"SameNumberTwiceTakesTheWidthOfTheOpened",
                               {"x_1.cbf", "x_0001.cbf", "x_2.cbf", "x_0002.cbf", "x_02.cbf"},
                               "x_0002.cbf",
                               {"x_0001.cbf", "x_0002.cbf"},
                               {1, 2}},
                    FolderCase{"SameNumberTwiceOpenedUnpadded",
                               {"x_1.cbf", "x_0001.cbf", "x_2.cbf", "x_0002.cbf", "x_02.cbf"},
                               "x_1.cbf",
                               {"x_1.cbf", "x_2.cbf"},
                               {1, 2}},
                    FolderCase{"SameNumberTwiceFarApart",
                               {"x_1.cbf", "x_0001.cbf", "x_9000.cbf", "x_09000.cbf"},
                               "x_0001.cbf",
                               {"x_0001.cbf", "x_9000.cbf"},
                               {1, 9000}},
                    FolderCase{"GapsAndZero",
                               {"x_0000.cbf", "x_0007.cbf", "x_0003.cbf"},
                               "x_0007.cbf",
                               {"x_0000.cbf", "x_0003.cbf", "x_0007.cbf"},
                               {0, 3, 7}},
                    FolderCase{"CountOutgrowsThePadding",
                               {"x_998.cbf", "x_999.cbf", "x_1000.cbf"},
                               "x_999.cbf",
                               {"x_998.cbf", "x_999.cbf", "x_1000.cbf"},
                               {998, 999, 1000}},
                    FolderCase{"SeveralSweepsInOneFolder",
                               {"lyso_1_0001.cbf", "lyso_1_0002.cbf", "lyso_2_0001.cbf",
                                "lyso_12_0001.cbf"},
                               "lyso_1_0002.cbf",
                               {"lyso_1_0001.cbf", "lyso_1_0002.cbf"},
                               {1, 2}},
                    FolderCase{"PrefixEndsInDigits",
                               {"run7-001.tif", "run7-002.tif", "run8-003.tif", "run-004.tif"},
                               "run7-002.tif",
                               {"run7-001.tif", "run7-002.tif"},
                               {1, 2}},
                    FolderCase{"DigitsOnly",
                               {"00001.tif", "00002.tif", "x00003.tif"},
                               "00001.tif",
                               {"00001.tif", "00002.tif"},
                               {1, 2}},
                    FolderCase{"TextBehindTheNumber",
                               {"x_001_dark.edf", "x_002_dark.edf", "x_003.edf"},
                               "x_001_dark.edf",
                               {"x_001_dark.edf", "x_002_dark.edf"},
                               {1, 2}},
                    FolderCase{"CompressedFiles",
                               {"x_01.cbf.gz", "x_02.cbf.gz", "x_02.cbf", "x_03.cbf.bz2"},
                               "x_01.cbf.gz",
                               {"x_01.cbf.gz", "x_02.cbf.gz"},
                               {1, 2}},
                    FolderCase{"ExtensionWithADigitIsNoNumber",
                               {"x_01.mar345", "x_02.mar345", "x_02.mar346"},
                               "x_01.mar345",
                               {"x_01.mar345", "x_02.mar345"},
                               {1, 2}},
                    FolderCase{"ExtensionOfDigitsIsTheNumber",
                               {"x.0001", "x.0002", "x.cbf"},
                               "x.0001",
                               {"x.0001", "x.0002"},
                               {1, 2}},
                    FolderCase{"BesideItOtherNamesAndLeftovers",
                               {"x_1.cbf", "x_2.cbf.tmp", ".x_3.cbf", "x_.cbf", "x_4a.cbf",
                                "X_5.cbf", "x_6.CBF", "x_-7.cbf", "x_ 8.cbf", "xx_9.cbf"},
                               "x_1.cbf",
                               {"x_1.cbf"},
                               {1}},
                    FolderCase{"OddCharacters",
                               {"a b%1_\xc3\xa4 01.cbf", "a b%1_\xc3\xa4 02.cbf"},
                               "a b%1_\xc3\xa4 01.cbf",
                               {"a b%1_\xc3\xa4 01.cbf", "a b%1_\xc3\xa4 02.cbf"},
                               {1, 2}},
                    FolderCase{"LargestNumber",
                               {"x_2147483646.cbf", "x_2147483647.cbf", "x_2147483648.cbf",
                                "x_99999999999999999999999.cbf"},
                               "x_2147483647.cbf",
                               {"x_2147483646.cbf", "x_2147483647.cbf"},
                               {2147483646, 2147483647}},
                    FolderCase{"LongPaddingIsNoLargeNumber",
                               {"x_00000000000000001.cbf", "x_00000000000000002.cbf"},
                               "x_00000000000000001.cbf",
                               {"x_00000000000000001.cbf", "x_00000000000000002.cbf"},
                               {1, 2}},
                    FolderCase{"SeventeenDigitsAreNoSeriesNumber",
                               {"x_20240115123456789.cbf", "x_20240115123456790.cbf"},
                               "x_20240115123456789.cbf",
                               {},
                               {}},
                    FolderCase{"NoDigits", {"x.cbf", "y.cbf"}, "x.cbf", {}, {}},
                    FolderCase{"DigitOnlyInTheExtension", {"x.h5"}, "x.h5", {}, {}}),
    [](const auto& row) { return row.param.name; });

TEST(FilesOfASeriesInFolders, FoldersWithFittingNamesAreNoMembers)
{
    const TempFolder folder;
    folder.write("x_1.cbf", "");
    std::filesystem::create_directory(folder / "x_2.cbf");
    EXPECT_EQ(SeriesFinder::of(folder / "x_1.cbf")->list().size(), 1u);
}

TEST(FilesOfASeriesInFolders, DigitsOfTheFolderPlayNoPart)
{
    const TempFolder folder;
    std::filesystem::create_directory(folder / "run_0012");
    EXPECT_FALSE(SeriesFinder::of(folder / "run_0012/x.cbf"));
    folder.write("run_0012/x_5.cbf", "");
    EXPECT_EQ(SeriesFinder::of(folder / "run_0012/x_5.cbf")->list(),
              (std::vector<SeriesFinder::Member>{{5, 1}}));
}

TEST(FilesOfASeriesInFolders, AFolderThatIsGoneHasNoFiles)
{
    EXPECT_TRUE(SeriesFinder::of("/nowhere at all/x_1.cbf")->list().empty());
}
