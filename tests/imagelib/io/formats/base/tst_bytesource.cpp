// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files plain and compressed as a whole, what is refused, and what is damaged.
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/Unpack.h"
#include "tests/support/Packed.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <random>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

std::string contentOf(const ByteSource& source)
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

template <class Action>
std::string failureOf(Action&& action)
{
    try {
        action();
    } catch (const MException& exception) {
        return exception.what();
    }
    return "no failure";
}

struct Packer {
    const char* name;
    std::string (*pack)(const std::string&);
    Packing packing;
};

class Packed : public testing::TestWithParam<Packer> {};

INSTANTIATE_TEST_SUITE_P(Kind, Packed,
                         testing::Values(Packer{"Gzip", gzipPacked, Packing::Gzip},
                                         Packer{"Zlib", zlibPacked, Packing::Zlib},
                                         Packer{"Bzip2", bzip2Packed, Packing::Bzip2}),
                         [](const auto& row) { return row.param.name; });

TEST_P(Packed, EverySizeComesBack)
{
    // Around the first guess of the size, 64 KiB, and its growth; the last one is several blocks.
    for (const std::size_t size : {0u, 1u, 4095u, 65535u, 65536u, 65537u, 1u << 20, 3000001u}) {
        const std::string plain = sample(size);
        const std::string packed = GetParam().pack(plain);
        const Unpacked got = unpack(bytesOf(packed), GetParam().packing, 1 << 23, "x");
        ASSERT_EQ(got.size, size);
        EXPECT_TRUE(std::ranges::equal(got.bytes(), bytesOf(plain))) << size;
        std::vector<std::byte> target(size);
        ASSERT_EQ(unpackInto(bytesOf(packed), GetParam().packing, target, "x"), size);
        EXPECT_TRUE(std::ranges::equal(target, bytesOf(plain))) << size;
    }
}

TEST_P(Packed, EveryCutIsAFailure)
{
    const std::string packed = GetParam().pack(sample(3000));
    for (std::size_t size = 0; size < packed.size(); ++size) {
        const std::string text = failureOf([&] {
            unpack(bytesOf(packed).first(size), GetParam().packing, 1 << 20, "/data/x.gz");
        });
        ASSERT_THAT(text, HasSubstr("Compressed data are damaged")) << size;
        ASSERT_THAT(text, HasSubstr("/data/x.gz"));
    }
}

TEST_P(Packed, DamageIsAFailureOrHarmless)
{
    const std::string plain = sample(3000);
    const std::string packed = GetParam().pack(plain);
    for (std::size_t at = 0; at < packed.size(); ++at) {
        std::string damaged = packed;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x5a);
        try {
            // Checksums cover the data; names and dates in the head are nobody's loss.
            const Unpacked got = unpack(bytesOf(damaged), GetParam().packing, 1 << 20, "x");
            ASSERT_EQ(got.size, plain.size()) << at;
            EXPECT_TRUE(std::ranges::equal(got.bytes(), bytesOf(plain))) << at;
        } catch (const MRuntimeException&) {
        }
    }
}

TEST_P(Packed, MoreThanTheLimitIsRefused)
{
    const std::string bomb = GetParam().pack(std::string(5'000'000, 'x'));
    ASSERT_LT(bomb.size(), 30000u);
    EXPECT_EQ(unpack(bytesOf(bomb), GetParam().packing, 5'000'000, "x").size, 5'000'000u);
    EXPECT_THAT(failureOf([&] { unpack(bytesOf(bomb), GetParam().packing, 4'999'999, "/data/b"); }),
                HasSubstr("unpack to more than 4999999 bytes: /data/b"));
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
         {std::pair("a.gz", &gzipPacked), std::pair("a.bz2", &bzip2Packed)})
        for (const std::string& tail :
             {std::string(), std::string(700, '\0'), std::string("   ")}) {
            const std::string path =
                folder.write(name, pack(parts[0]) + pack(parts[1]) + pack(parts[2]) + tail);
            const auto source = ByteSource::open(path);
            EXPECT_EQ(contentOf(*source), whole) << name;
            EXPECT_EQ(source->path(), path);
            EXPECT_EQ(source->memory().size(), whole.size());
        }
}

TEST(ByteSourceOpen, ASecondMemberThatIsCutIsAFailure)
{
    const TempFolder folder;
    for (const auto& [name, pack] :
         {std::pair("a.gz", &gzipPacked), std::pair("a.bz2", &bzip2Packed)}) {
        const std::string second = pack(sample(5000));
        const std::string path =
            folder.write(name, pack(sample(5000)) + second.substr(0, second.size() / 2));
        EXPECT_THAT(failureOf([&] { ByteSource::open(path); }), HasSubstr(path));
    }
}

TEST(ByteSourceOpen, RefusesWhatIsNoRegularFile)
{
    const TempFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THAT(failureOf([&] { ByteSource::open(pipe); }), HasSubstr("it is no regular file: "));
    EXPECT_THAT(failureOf([&] { ByteSource::open(folder.path()); }),
                HasSubstr("it is a directory: " + folder.path()));
    EXPECT_THAT(failureOf([&] { ByteSource::open(folder / "none"); }),
                HasSubstr("No such file or directory: " + folder.path() + "/none"));
    EXPECT_THAT(failureOf([&] { ByteSource::open(""); }), HasSubstr("Cannot open file"));
}

TEST(ByteSourcePlain, ReadsByPositionUpToTheEnd)
{
    const TempFolder folder;
    const auto source = ByteSource::open(folder.write("a", "0123456789"));
    EXPECT_TRUE(source->memory().empty());
    EXPECT_EQ(source->head(4), "0123");
    EXPECT_EQ(source->head(100), "0123456789");
    char target[8] = {};
    EXPECT_EQ(source->readSome(7, target, sizeof target), 3u);
    EXPECT_STREQ(target, "789");
    for (const std::uint64_t offset :
         {std::uint64_t(10), std::uint64_t(1) << 62, ~std::uint64_t(0)})
        EXPECT_EQ(source->readSome(offset, target, sizeof target), 0u) << offset;
    EXPECT_EQ(failureOf([&] { source->read(8, target, 5, "pixel data"); }),
              "pixel data ends after 2 of 5 bytes: " + source->path());
}

TEST(ByteSourcePlain, AFileThatChangesIsNoCrash)
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
    EXPECT_EQ(contentOf(*source), "xxxxxxxxxxgrown");
    std::filesystem::remove(path);
    EXPECT_EQ(contentOf(*source), "xxxxxxxxxxgrown");
}

TEST(ByteSourceMemory, BehavesLikeAFile)
{
    const std::string_view text = "0123456789";
    const auto source =
        ByteSource::fromMemory("name", {bytesOf(text).begin(), bytesOf(text).end()});
    char target[8] = {};
    EXPECT_EQ(source->readSome(7, target, sizeof target), 3u);
    EXPECT_STREQ(target, "789");
    EXPECT_EQ(source->readSome(~std::uint64_t(0), target, 1), 0u);
    EXPECT_EQ(source->head(2), "01");
    const auto empty = ByteSource::fromMemory("name", {});
    EXPECT_EQ(empty->head(), "");
}

}  // namespace
