// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is opened for a folder.
#include "imagelib/io/series/FolderStart.h"

#include "imagelib/image/MException.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using morvend::imglib::fileToOpen;

TEST(FolderStart, IsTheFirstImageByItsNumberAndMastersGoFirst)
{
    const tarvik::tests::TempFolder folder;
    EXPECT_EQ(fileToOpen(folder / "missing.cbf"), folder / "missing.cbf");
    EXPECT_THROW(fileToOpen(folder.path()), morvend::MNoFileAccessException);
    std::filesystem::create_directory(folder / "a.cbf");
    // Each addition is put before all earlier ones, or is left alone.
    for (const auto& [added, first] :
         std::vector<std::pair<std::string, std::string>>{{"x_data_000001.h5", "x_data_000001.h5"},
                                                          {"x_10.cbf", "x_10.cbf"},
                                                          {"x_9.CBF.gz", "x_9.CBF.gz"},
                                                          {"x_0009a.cbf", "x_9.CBF.gz"},
                                                          {".x_1.cbf", "x_9.CBF.gz"},
                                                          {"README", "x_9.CBF.gz"},
                                                          {"z_master.h5", "z_master.h5"},
                                                          {"Y.nxs", "Y.nxs"}}) {
        const std::string path = folder.write(added, "x");
        EXPECT_EQ(fileToOpen(folder.path()), folder / first);
        EXPECT_EQ(fileToOpen(path), path);
    }
}

}  // namespace
