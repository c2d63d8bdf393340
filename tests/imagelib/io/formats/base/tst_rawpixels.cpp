// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte order and flags for every processor, and files that appear complete or not at all.
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/AtomicFile.h"
#include "imagelib/io/formats/base/RawPixels.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <hwy/targets.h>

#include <sys/stat.h>
#include <unistd.h>

#include <numeric>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;

/// Runs a check once for each instruction set of this machine.
template <class Check>
void forEachTarget(Check&& check)
{
    for (const auto target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        check(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(RawPixels, SwapReversesEachValueAndNothingElse)
{
    forEachTarget([](const char* target) {
        for (const std::size_t width : {1u, 2u, 4u, 8u})
            for (std::size_t values = 0; values < 70; ++values) {
                std::vector<std::byte> bytes(values * width + 1);
                for (std::size_t i = 0; i < bytes.size(); ++i)
                    bytes[i] = std::byte(i);
                const std::vector<std::byte> before = bytes;
                swapByteOrder(std::span(bytes).first(values * width), width);
                for (std::size_t i = 0; i < values * width; ++i)
                    ASSERT_EQ(bytes[i], before[i / width * width + width - 1 - i % width])
                        << target << " width " << width << " byte " << i << " of " << values;
                ASSERT_EQ(bytes.back(), before.back());
            }
    });
}

TEST(RawPixels, LowestSignedIsFoundAtEveryPlace)
{
    forEachTarget([](const char* target) {
        for (std::size_t size = 0; size < 70; ++size) {
            std::vector<std::int32_t> values(size, 3);
            ASSERT_EQ(lowestSigned(values), 0) << target;
            for (std::size_t at = 0; at < size; ++at) {
                values[at] = -2;
                ASSERT_EQ(lowestSigned(values), -2) << target << ' ' << at << " of " << size;
                values[at] = 3;
            }
        }
    });
}

TEST(RawPixels, PiecesCoverTheTargetOnce)
{
    std::vector<std::byte> content(700001);
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = std::byte(i * 7 >> 3);
    const auto source = ByteSource::fromMemory("x", content);
    std::vector<std::byte> target(content.size() - 1);
    std::size_t seen = 0;
    const std::size_t got = readInPieces(*source, 1, target, [&](std::span<std::byte> piece) {
        EXPECT_EQ(piece.data(), target.data() + seen);
        seen += piece.size();
    });
    EXPECT_EQ(got, target.size());
    EXPECT_EQ(seen, target.size());
    EXPECT_TRUE(std::equal(target.begin(), target.end(), content.begin() + 1));
    EXPECT_EQ(readInPieces(*source, 11, target, [](std::span<std::byte>) {}), target.size() - 10);
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t filesIn(const TempFolder& folder)
{
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

TEST(AtomicFiles, AppearAtCommitAndKeepTheirMode)
{
    const TempFolder folder;
    const std::string path = folder.write("a.cbf", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    {
        AtomicFile file(path);
        file.write("new ", 4);
        file.write("content", 7);
        EXPECT_EQ(contentOf(path), "old");
        file.commit();
    }
    EXPECT_EQ(contentOf(path), "new content");
    EXPECT_EQ(filesIn(folder), 1u);
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
}

TEST(AtomicFiles, LeaveNothingBehindWithoutCommit)
{
    const TempFolder folder;
    const std::string path = folder.write("a.cbf", "old");
    {
        AtomicFile file(path);
        file.write("new", 3);
    }
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(filesIn(folder), 1u);
    EXPECT_THROW(AtomicFile(folder / "none/a.cbf"), MNoFileAccessException);
    std::filesystem::create_directory(folder / "b.cbf");
    AtomicFile overFolder(folder / "b.cbf");
    EXPECT_THROW(overFolder.commit(), MRuntimeException);
}

}  // namespace
