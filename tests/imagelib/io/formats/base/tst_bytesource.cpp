// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files plain and compressed as a whole, what is refused, and what is damaged; files that appear
// complete or not at all; byte order and flags for every processor.
#include "imagelib/io/formats/base/AtomicFile.h"
#include "imagelib/io/formats/base/RawPixels.h"
#include "imagelib/io/formats/base/Unpack.h"
#include "tests/imagelib/io/FileCases.h"
#include "tests/support/EveryTarget.h"
#include "tests/support/Packed.h"

#include <sys/stat.h>

#include <algorithm>
#include <random>

namespace tarvik::tests {

namespace {

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

std::string wholeOf(const ByteSource& source)
{
    std::string content(static_cast<std::size_t>(source.size()), '\0');
    source.read(0, content.data(), content.size(), "content");
    return content;
}

/// Text that packs to about a half.
std::string sample(std::size_t size)
{
    std::mt19937 random(7);
    std::string text(size, '\0');
    for (char& each : text)
        each = static_cast<char>('a' + random() % 13);
    return text;
}

struct Packer {
    const char* name;
    std::string (*pack)(const std::string&);
    Packing packing;
};

class Packed : public testing::TestWithParam<Packer> {
protected:
    static std::string packed(const std::string& plain) { return GetParam().pack(plain); }
    static Unpacked unpacked(std::string_view text, std::uint64_t most = 1 << 23)
    {
        return unpack(bytesOf(text), GetParam().packing, most, "/data/x.gz");
    }
};

INSTANTIATE_TEST_SUITE_P(Kind, Packed,
                         testing::Values(Packer{"Gzip", gzipPacked, Packing::Gzip},
                                         Packer{"Zlib", zlibPacked, Packing::Zlib},
                                         Packer{"Bzip2", bzip2Packed, Packing::Bzip2}),
                         [](const auto& row) { return row.param.name; });

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

TEST_P(Packed, EverySizeComesBack)
{
    // Around the first guess of the size, 64 KiB, and its growth; the last one is several blocks.
    for (const std::size_t size : {0u, 1u, 4095u, 65535u, 65536u, 65537u, 300001u}) {
        const std::string plain = sample(size);
        const Unpacked got = unpacked(packed(plain));
        ASSERT_EQ(got.size, size);
        EXPECT_TRUE(std::ranges::equal(got.bytes(), bytesOf(plain))) << size;
        std::vector<std::byte> target(size);
        ASSERT_EQ(unpackInto(bytesOf(packed(plain)), GetParam().packing, target, "x"), size);
        EXPECT_TRUE(std::ranges::equal(target, bytesOf(plain))) << size;
    }
}

TEST_P(Packed, EveryCutIsAFailureAndEveryDamageToo)
{
    const std::string plain = sample(900);
    const std::string whole = packed(plain);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        const std::string text = failureOf([&] { unpacked(whole.substr(0, at)); });
        ASSERT_THAT(text, HasSubstr("Compressed data are damaged")) << at;
        ASSERT_THAT(text, HasSubstr("/data/x.gz"));
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x5a);
        try {
            // Checksums cover the data; names and dates in the head are nobody's loss.
            EXPECT_TRUE(std::ranges::equal(unpacked(damaged).bytes(), bytesOf(plain))) << at;
        } catch (const MRuntimeException&) {
        }
    }
}

TEST_P(Packed, MoreThanTheLimitIsRefused)
{
    const std::string bomb = packed(std::string(5'000'000, 'x'));
    ASSERT_LT(bomb.size(), 30000u);
    EXPECT_EQ(unpacked(bomb, 5'000'000).size, 5'000'000u);
    EXPECT_THAT(failureOf([&] { unpacked(bomb, 4'999'999); }),
                HasSubstr("unpack to more than 4999999 bytes: /data/x.gz"));
    std::vector<std::byte> target(4'999'999);
    EXPECT_THAT(
        failureOf([&] { unpackInto(bytesOf(bomb), GetParam().packing, target, "/data/b"); }),
        HasSubstr("unpack to more than 4999999 bytes"));
}

TEST(ByteSourceOpen, UnpacksAllMembersAndIgnoresPadding)
{
    const TempFolder folder;
    const std::string parts[] = {sample(100000), "", "the end"};
    const std::string whole = parts[0] + parts[1] + parts[2];
    for (const auto& [name, pack] :
         {std::pair("a.gz", &gzipPacked), std::pair("a.bz2", &bzip2Packed)}) {
        const std::string packed = pack(parts[0]) + pack(parts[1]) + pack(parts[2]);
        for (const std::string& tail :
             {std::string(), std::string(700, '\0'), std::string("   ")}) {
            const std::string path = folder.write(name, packed + tail);
            const auto source = ByteSource::open(path);
            EXPECT_EQ(wholeOf(*source), whole) << name;
            EXPECT_EQ(source->path(), path);
            EXPECT_EQ(source->memory().size(), whole.size());
        }
        const std::string second = pack(sample(5000));
        const std::string cut =
            folder.write(name, pack(sample(5000)) + second.substr(0, second.size() / 2));
        EXPECT_THAT(failureOf([&] { ByteSource::open(cut); }), HasSubstr(cut));
    }
}

TEST(ByteSourceOpen, RefusesWhatIsNoRegularFile)
{
    const TempFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const auto& [path, text] : {std::pair(folder / "pipe", "it is no regular file: "),
                                     {folder.path(), "it is a directory: "},
                                     {folder / "none", "No such file or directory: "},
                                     {std::string(), "Cannot open file"}})
        EXPECT_THAT(failureOf([&, path = path] { ByteSource::open(path); }),
                    testing::AllOf(HasSubstr(text), EndsWith(path)));
}

TEST(ByteSourceOpen, ReadsByPositionUpToTheEnd)
{
    const TempFolder folder;
    const auto file = ByteSource::open(folder.write("a", "0123456789"));
    EXPECT_TRUE(file->memory().empty());
    const auto digits = bytesOf("0123456789");
    for (const auto& source :
         {file, ByteSource::fromMemory("name", {digits.begin(), digits.end()})}) {
        EXPECT_EQ(source->head(4), "0123");
        EXPECT_EQ(source->head(100), "0123456789");
        char target[8] = {};
        EXPECT_EQ(source->readSome(7, target, sizeof target), 3u);
        EXPECT_STREQ(target, "789");
        for (const std::uint64_t offset : {10ULL, 1ULL << 62, ~0ULL})
            EXPECT_EQ(source->readSome(offset, target, sizeof target), 0u) << offset;
        EXPECT_EQ(failureOf([&] { source->read(8, target, 5, "pixel data"); }),
                  "pixel data ends after 2 of 5 bytes: " + source->path());
    }
    EXPECT_EQ(ByteSource::fromMemory("name", {})->head(), "");
}

TEST(ByteSourceOpen, AFileThatChangesIsNoCrash)
{
    const TempFolder folder;
    const std::string path = folder.write("a", std::string(100000, 'x'));
    const auto source = ByteSource::open(path);
    std::filesystem::resize_file(path, 10);
    EXPECT_EQ(source->size(), 10u);
    char target[100];
    EXPECT_THAT(failureOf([&] { source->read(0, target, 100, "header"); }),
                HasSubstr("header ends after 10 of 100 bytes"));
    std::ofstream(path, std::ios::app) << "grown";
    EXPECT_EQ(wholeOf(*source), "xxxxxxxxxxgrown");
    std::filesystem::remove(path);
    EXPECT_EQ(wholeOf(*source), "xxxxxxxxxxgrown");
}

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
