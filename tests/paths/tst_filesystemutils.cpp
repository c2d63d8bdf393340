// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Paths made tidy and taken apart.
#include "paths/MFilesystemUtils.h"

#include "imagelib/image/MException.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>

using namespace morvend;
using imglib::utils::normalizePath;
using imglib::utils::parseFileName;

namespace {

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

TEST(NormalizePath, GivesTheTidyPath)
{
    const WorkingDirectory inRoot("/");
    const std::pair<const char*, const char*> table[] = {
        {"", ""},
        {"/", "/"},
        {"////", "/"},
        {"/./././", "/"},
        {"/a/b/../c//d/./e/", "/a/c/d/e"},
        {"a/b", "/a/b"},
        {"/a/b/c/../../d", "/a/d"},
        {"/a/../b", "/b"},
        {"/a/../", "/"},
        {"/a/.//./b", "/a/b"},
        {"/a/b/..", "/a/b/.."},
        {"/a/b/.", "/a/b/."},
        {"/a/b//", "/a/b"},
        {"/a/..b/.c/...", "/a/..b/.c/..."},
        {"/a b/%20/\xc3\xa4", "/a b/%20/\xc3\xa4"}};
    for (const auto& [path, expected] : table)
        EXPECT_EQ(normalized(path), expected) << path;
}

TEST(NormalizePath, ALeadAboveTheRootNamesThePathAsGiven)
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

TEST(NormalizePath, AWorkingDirectoryThatIsGoneIsAnError)
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

TEST(ParseFileName, SplitsAtTheLastSlashAndTheLastDot)
{
    using Parts = std::array<std::string, 4>;  // file name, directory, base name, extension
    const std::pair<const char*, Parts> table[] = {
        {"", {"", "", "", ""}},
        {"//", {"/", "/", "", ""}},
        {"/data/x_master.h5", {"/data/x_master.h5", "/data", "x_master", "h5"}},
        {"/x.cbf", {"/x.cbf", "", "x", "cbf"}},
        {"/data/x", {"/data/x", "/data", "x", ""}},
        {"/data.d/x", {"/data.d/x", "/data.d", "x", ""}},
        {"/data/.cbf", {"/data/.cbf", "/data", "", "cbf"}},
        {"/data/x.", {"/data/x.", "/data", "x", ""}},
        {"/data/x.cbf.gz", {"/data/x.cbf.gz", "/data", "x.cbf", "gz"}},
        {"/data//a/../x.h5/", {"/data/x.h5", "/data", "x", "h5"}}};
    for (const auto& [path, expected] : table) {
        Parts parts{path, "x", "x", "x"};
        parseFileName(parts[0], parts[3], parts[2], parts[1]);
        EXPECT_EQ(parts, expected) << path;
    }
}
