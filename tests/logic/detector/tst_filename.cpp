// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Patterns of file names, in folders that exist, are full, or do not answer.
#include "imagelib/image/MException.h"
#include "logic/detector/FileNamePattern.h"
#include "logic/detector/NextFileName.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include <sys/stat.h>

using namespace tarvik::tests;
using testing::IsEmpty;

namespace {

struct Row {
    const char* pattern;
    std::set<std::string> taken;
    const char* name;  ///< empty: none
};

TEST(FileNamePattern, TakesTheFirstFreeName)
{
    for (const Row& row : std::initializer_list<Row>{
             {"/d/x", {}, "/d/x_master.h5"},
             {"/d/x", {"/d/x_master.h5"}, "/d/x_001_master.h5"},
             {"/d/x", {"/d/x_master.h5", "/d/x_001_master.h5"}, "/d/x_002_master.h5"},
             {"/d/./y/../x", {}, "/d/x_master.h5"},
             {"/x", {}, "/x_master.h5"},
             {"/d/x.hdf", {}, "/d/x_master.hdf"},
             {"/d/x.", {}, "/d/x_master.h5"},
             {"/d/x_master.h5", {}, "/d/x_master.h5"},
             {"/d/x_master_master.h5", {}, "/d/x_master_master.h5"},
             {"/d/x_007", {}, "/d/x_007_master.h5"},
             {"/d/x_007", {"/d/x_007_master.h5"}, "/d/x_008_master.h5"},
             {"/d/x_000", {"/d/x_000_master.h5"}, "/d/x_001_master.h5"},
             {"/d/x_9_master.h5", {"/d/x_9_master.h5"}, "/d/x_10_master.h5"},
             {"/d/_5", {}, "/d/_5_master.h5"},
             {"/d/123", {}, "/d/123_master.h5"},
             {"/d/123", {"/d/123_master.h5"}, "/d/123_001_master.h5"},
             {"/d/abc123", {"/d/abc123_master.h5"}, "/d/abc123_001_master.h5"},
             {"/d/x_00000000000000000001", {}, "/d/x_00000000000000000001_master.h5"},
             {"/d/x_99999", {}, "/d/x_99999_master.h5"},
             {"/d/x_99999", {"/d/x_99999_master.h5"}, ""},
             {"/d/x_100000", {}, ""},
             {"/d/x_99999999999999999999", {}, ""}}) {
        const auto name = FileNamePattern(row.pattern).firstFree([&](const std::string& path) {
            return row.taken.contains(path);
        });
        EXPECT_EQ(name.value_or(""), row.name) << row.pattern << ", " << row.taken.size();
    }
    EXPECT_THROW(FileNamePattern("/../x"), morvend::MNoFileAccessException);
}

TEST(NextFileName, KnowsTheFilesOfALargeFolder)
{
    const TempFolder folder;
    folder.write("x_master.h5", "");
    for (int i = 1; i < 40; ++i)
        folder.write("x_0" + std::to_string(100 + i).substr(1) + "_master.h5", "");
    EXPECT_EQ(nextFileName(folder / "x").name, folder / "x_040_master.h5");
    EXPECT_EQ(nextFileName(folder / "x_99").name, folder / "x_99_master.h5");
    folder.write("x_99999_master.h5", "");
    EXPECT_EQ(nextFileName(folder / "x_99999").error,
              "Pattern " + (folder / "x_99999") + " appears to often");
    EXPECT_EQ(nextFileName(folder / "none/x").error, "Directory not writable");
    const std::filesystem::directory_iterator files(folder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 41) << "the file of the test is gone";
}

TEST(NextFileName, DoesNotWaitTwiceForAFolderThatDoesNotAnswer)
{
    // Opening a pipe for writing waits until somebody reads from it.
    const TempFolder folder;
    const std::string pipe = folder / ".morvend_tarvik_halvo_service_test.tmp";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string noAnswer = "Directory " + folder.path() + "/ does not answer";
    EXPECT_EQ(nextFileName(folder / "x", std::chrono::milliseconds(1)).error, noAnswer);
    EXPECT_EQ(nextFileName(folder / "y", std::chrono::hours(1)).error, noAnswer);
    const std::ifstream reader(pipe);
    NextFileName next;
    do
        next = nextFileName(folder / "x");
    while (next.error == noAnswer);
    EXPECT_EQ(next.name, folder / "x_master.h5");
    EXPECT_THAT(next.error, IsEmpty());
}

}  // namespace
