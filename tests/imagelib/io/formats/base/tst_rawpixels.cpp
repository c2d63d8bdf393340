// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte order and flags for every processor, and files that appear complete or not at all.
#include "imagelib/io/formats/base/AtomicFile.h"
#include "imagelib/io/formats/base/RawPixels.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/EveryTarget.h"

#include <sys/stat.h>

namespace tarvik::tests {
namespace {

std::vector<std::byte> countedBytes(std::size_t size)
{
    std::vector<std::byte> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = std::byte(i * 13 + (i >> 8));
    return bytes;
}

/// The content of the files in a folder.
std::vector<std::string> contents(const TempFolder& folder)
{
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        found.push_back(contentOf(entry.path()));
    return found;
}

}  // namespace

TEST(RawPixels, SwapReversesEachValueAndNothingElse)
{
    forEveryTarget([] {
        for (const std::size_t width : {1u, 2u, 4u, 8u})
            for (std::size_t values = 0; values < 70; ++values) {
                const std::vector<std::byte> before = countedBytes(values * width + 1);
                std::vector<std::byte> bytes = before;
                swapByteOrder(std::span(bytes).first(values * width), width);
                for (std::size_t i = 0; i < values * width; ++i)
                    ASSERT_EQ(bytes[i], before[i / width * width + width - 1 - i % width])
                        << "width " << width << " byte " << i << " of " << values;
                ASSERT_EQ(bytes.back(), before.back());
            }
    });
}

TEST(RawPixels, LowestSignedIsFoundAtEveryPlace)
{
    forEveryTarget([] {
        for (std::size_t size = 0; size < 70; ++size) {
            std::vector<std::int32_t> values(size, 3);
            ASSERT_EQ(lowestSigned(values), 0);
            for (std::size_t at = 0; at < size; ++at) {
                values[at] = -2;
                ASSERT_EQ(lowestSigned(values), -2) << at << " of " << size;
                values[at] = 3;
            }
        }
    });
}

TEST(RawPixels, PiecesCoverTheTargetOnce)
{
    const std::vector<std::byte> content = countedBytes(700001);
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
    EXPECT_THAT(contents(folder), testing::ElementsAre("new content"));
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
}

TEST(AtomicFiles, LeaveNothingBehindWithoutCommit)
{
    const TempFolder folder;
    AtomicFile(folder.write("a.cbf", "old")).write("new", 3);
    EXPECT_THAT(contents(folder), testing::ElementsAre("old"));
    EXPECT_THROW(AtomicFile(folder / "none/a.cbf"), MNoFileAccessException);
    std::filesystem::create_directory(folder / "b.cbf");
    AtomicFile overFolder(folder / "b.cbf");
    EXPECT_THROW(overFolder.commit(), MRuntimeException);
}

}  // namespace tarvik::tests
