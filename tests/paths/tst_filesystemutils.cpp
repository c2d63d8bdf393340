// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Paths made tidy and taken apart.
#include "paths/MFilesystemUtils.h"

#include "imagelib/image/MException.h"

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

}  // namespace

TEST(NormalizePath, GivesTheTidyPath)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path("/");
    const std::pair<const char*, const char*> table[] = {
        {"", ""},        {"////", "/"},          {"/a/b/../c//d/./e/", "/a/c/d/e"}, {"a/b", "/a/b"},
        {"/a/../", "/"}, {"/a/b/..", "/a/b/.."}, {"/a/..b/.c/...", "/a/..b/.c/..."}};
    for (const auto& [path, expected] : table)
        EXPECT_EQ(normalized(path), expected) << path;
    std::filesystem::current_path(before);
}

TEST(NormalizePath, ALeadAboveTheRootNamesThePathAsGiven)
{
    std::string text = "/a/../../b";
    EXPECT_THAT([&] { normalizePath(text); }, testing::ThrowsMessage<MNoFileAccessException>(
                                                  "Error: /a/../../b is not a valid path"));
    EXPECT_EQ(text, "/a/../../b");
}

TEST(ParseFileName, SplitsAtTheLastSlashAndTheLastDot)
{
    using Parts = std::array<std::string, 4>;  // file name, directory, base name, extension
    const std::pair<const char*, Parts> table[] = {
        {"", {"", "", "", ""}},
        {"/data/x_master.h5", {"/data/x_master.h5", "/data", "x_master", "h5"}},
        {"/x.cbf", {"/x.cbf", "", "x", "cbf"}},
        {"/data.d/x", {"/data.d/x", "/data.d", "x", ""}},
        {"/data/x.cbf.gz", {"/data/x.cbf.gz", "/data", "x.cbf", "gz"}},
        {"/data//a/../x.h5/", {"/data/x.h5", "/data", "x", "h5"}}};
    for (const auto& [path, expected] : table) {
        Parts parts{path, "x", "x", "x"};
        parseFileName(parts[0], parts[3], parts[2], parts[1]);
        EXPECT_EQ(parts, expected) << path;
    }
}
