// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the cache keeps and counts, and the bytes of requests.
#include "logic/preload/PreloaderCache.h"
#include "logic/preload/PreloaderMessages.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

namespace {

using morvend::imglib::FileStamp;
using morvend::imglib::MImage;
using tarvik::tests::TempFolder;

TEST(PreloaderCache, BytesOfAnOverwrittenImageGoOnCounting)
{
    PreloaderCache cache;
    cache.add({"a", 1}, MImage(4, 3, 7));
    cache.add({"a", 1}, MImage(2, 1, 7));
    EXPECT_EQ(cache.fill(), 48U + 8U);
    EXPECT_EQ((cache[{"a", 1}].width()), 2);
    cache.eraseIfLessEqual({"a", 1});
    EXPECT_EQ(cache.fill(), 48U);
    const PreloaderCache::Key gone("a", 1);
    EXPECT_THAT([&] { (void)cache[gone]; },
                testing::ThrowsMessage<morvend::MOutOfRangeException>("Cache fault"));
}

TEST(PreloaderCache, ImageGoesWhenItsFileShowsSomethingElse)
{
    struct Row {
        const char *name, *before, *after;  // null: removed
        bool mayGrow, stale;
    };
    for (const Row& row : {Row{"unchanged", "abc", "", false, false},
                           {"rewritten", "abc", "xyz", false, true},
                           {"longer", "abc", "abcdef", false, true},
                           {"appended to", "abc", "abcdef", true, false},
                           {"cut", "abc", "a", true, true},
                           {"removed", "abc", nullptr, false, false}}) {
        const TempFolder folder;
        const std::string path = folder.write("x", row.before);
        PreloaderCache cache;
        cache.add({"a", 1}, MImage(4, 3, 7), {path, FileStamp(path), row.mayGrow});
        if (!row.after)
            std::filesystem::remove(path);
        else if (*row.after) {
            const auto later = std::filesystem::last_write_time(path) + std::chrono::seconds(2);
            folder.write("x", row.after);
            std::filesystem::last_write_time(path, later);
        }
        cache.eraseIfStale({"a", 1});
        EXPECT_EQ(cache.count({"a", 1}), !row.stale) << row.name;
        EXPECT_EQ(cache.fill(), row.stale ? 0 : 48U) << row.name;
        cache.eraseIfStale({"a", 2});
    }
}

TEST(PreloaderMessages, AreBytesInTheOrderOfTheMachine)
{
    const std::string put = preloader::pack(preloader::PUT, 0x0102030405060708UL, "/a b");
    EXPECT_EQ(put, std::string("\1\0\0\0\x08\7\6\5\4\3\2\1/a b", 16));
    EXPECT_EQ(preloader::pack(preloader::GET, 0, ""), std::string(12, '\0'));
    preloader::Method method{};
    unsigned long index = 0;
    std::string path;
    preloader::unpack(put, method, index, path);
    EXPECT_EQ(method, preloader::PUT);
    EXPECT_EQ(index, 0x0102030405060708UL);
    EXPECT_EQ(path, "/a b");
    EXPECT_EQ(preloader::pack(true), std::string("\1"));
    EXPECT_EQ(preloader::pack(false), std::string("\0", 1));
    for (const std::string& reply : {std::string("\1x", 2), preloader::packHitOfSameTree()}) {
        bool hit = false;
        preloader::unpack(reply, hit);
        EXPECT_TRUE(hit);
        EXPECT_EQ(preloader::hasSameTree(reply), reply[0] == 2);
    }
    EXPECT_EQ(preloader::checkedRequest(put.substr(0, 12)).size(), 12U);
    EXPECT_THROW(preloader::checkedRequest(put.substr(0, 11)), morvend::MException);
    EXPECT_THROW(preloader::checkedReply(""), morvend::MException);
}

}  // namespace
