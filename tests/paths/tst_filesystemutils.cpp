// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Paths made tidy and taken apart.
#include "MFilesystemUtils.h"

#include "imagelib/image/MException.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace morvend;
using imglib::utils::normalizePath;
using imglib::utils::parseFileName;

namespace {

struct PathCase {
    const char* name;
    const char* path;
    const char* expected;
};

class NormalizePath : public testing::TestWithParam<PathCase> {};

std::string normalized(std::string path)
{
    normalizePath(path);
    return path;
}

/// The working directory for the time of one test.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const std::string& path) { std::filesystem::current_path(path); }
    ~WorkingDirectory() { std::filesystem::current_path(_before); }

private:
    std::filesystem::path _before = std::filesystem::current_path();
};

}  // namespace

TEST_P(NormalizePath, GivesTheTidyPath)
{
    const WorkingDirectory inRoot("/");
    EXPECT_EQ(normalized(GetParam().path), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NormalizePath,
    testing::Values(PathCase{"Empty", "", ""}, PathCase{"Root", "/", "/"},
                    PathCase{"OnlySlashes", "////", "/"}, PathCase{"OnlyDots", "/./././", "/"},
                    PathCase{"AllAtOnce", "/a/b/../c//d/./e/", "/a/c/d/e"},
                    PathCase{"RelativeInTheRoot", "a/b", "/a/b"},
                    PathCase{"UpTwice", "/a/b/c/../../d", "/a/d"},
                    PathCase{"UpToTheRoot", "/a/../b", "/b"},
                    PathCase{"UpToTheRootItself", "/a/../", "/"},
                    PathCase{"DotsWithinSlashes", "/a/.//./b", "/a/b"},
                    PathCase{"TrailingUpStays", "/a/b/..", "/a/b/.."},
                    PathCase{"TrailingDotStays", "/a/b/.", "/a/b/."},
                    PathCase{"TrailingSlashesGo", "/a/b//", "/a/b"},
                    PathCase{"NamesThatBeginWithDots", "/a/..b/.c/...", "/a/..b/.c/..."},
                    PathCase{"BlanksPercentAndUmlauts", "/a b/%20/\xc3\xa4", "/a b/%20/\xc3\xa4"}),
    [](const auto& row) { return row.param.name; });

TEST(NormalizePathErrors, ALeadAboveTheRootNamesThePathAsGiven)
{
    const WorkingDirectory inRoot("/");
    for (const std::string path : {"/../a", "/a/../../b", "../a", "//.././/../x"}) {
        std::string text = path;
        try {
            normalizePath(text);
            ADD_FAILURE() << path << " became " << text;
        } catch (const MNoFileAccessException& error) {
            EXPECT_EQ(error.what(), "Error: " + path + " is not a valid path");
        }
        EXPECT_EQ(text, path);
    }
}

TEST(NormalizePathErrors, AWorkingDirectoryThatIsGoneIsAnError)
{
    const tarvik::tests::TempFolder folder;
    std::filesystem::create_directory(folder / "gone");
    const WorkingDirectory here(folder / "gone");
    std::filesystem::remove(folder / "gone");
    EXPECT_THROW(normalized("a"), MNoFileAccessException);
    EXPECT_EQ(normalized("/a/"), "/a");
}

TEST(NormalizePath, RelativePathsStartFromTheWorkingDirectory)
{
    const tarvik::tests::TempFolder folder;
    const WorkingDirectory here(folder.path());
    EXPECT_EQ(normalized("a/b"), folder / "a/b");
    EXPECT_EQ(normalized("./x.cbf"), folder / "x.cbf");
    EXPECT_EQ(normalized("../x.cbf"),
              (std::filesystem::path(folder.path()).parent_path() / "x.cbf").string());
}

namespace {

struct PartsCase {
    const char* name;
    const char* path;
    const char* fileName;
    const char* directory;
    const char* baseName;
    const char* extension;
};

class ParseFileName : public testing::TestWithParam<PartsCase> {};

}  // namespace

TEST_P(ParseFileName, SplitsAtTheLastSlashAndTheLastDot)
{
    std::string fileName = GetParam().path;
    std::string extension = "x";
    std::string baseName = "x";
    std::string directory = "x";
    parseFileName(fileName, extension, baseName, directory);
    EXPECT_EQ(fileName, GetParam().fileName);
    EXPECT_EQ(directory, GetParam().directory);
    EXPECT_EQ(baseName, GetParam().baseName);
    EXPECT_EQ(extension, GetParam().extension);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ParseFileName,
    testing::Values(
        PartsCase{"Empty", "", "", "", "", ""}, PartsCase{"Root", "//", "/", "/", "", ""},
        PartsCase{"Master", "/data/x_master.h5", "/data/x_master.h5", "/data", "x_master", "h5"},
        PartsCase{"InTheRoot", "/x.cbf", "/x.cbf", "", "x", "cbf"},
        PartsCase{"NoExtension", "/data/x", "/data/x", "/data", "x", ""},
        PartsCase{"DotInTheFolderOnly", "/data.d/x", "/data.d/x", "/data.d", "x", ""},
        PartsCase{"LeadingDot", "/data/.cbf", "/data/.cbf", "/data", "", "cbf"},
        PartsCase{"TrailingDot", "/data/x.", "/data/x.", "/data", "x", ""},
        PartsCase{"TwoDots", "/data/x.cbf.gz", "/data/x.cbf.gz", "/data", "x.cbf", "gz"},
        PartsCase{"Untidy", "/data//a/../x.h5/", "/data/x.h5", "/data", "x", "h5"}),
    [](const auto& row) { return row.param.name; });
