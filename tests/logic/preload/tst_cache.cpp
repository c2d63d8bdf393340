// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the cache keeps and counts, and the bytes of requests.
#include "logic/preload/PreloaderCache.h"
#include "logic/preload/PreloaderMessages.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <random>
#include <set>

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

TEST(PreloaderCache, ListsWhatItHoldsInRuns)
{
    std::mt19937 random(3);
    PreloaderCache cache;
    std::set<int> model;
    for (int round = 0; round < 2000; ++round) {
        const int number = int(random() % 60);
        if (random() % 50 == 0) {
            cache.eraseIfLessEqual({"a", static_cast<unsigned long>(number)});
            std::erase_if(model, [=](int each) { return each <= number; });
        } else {
            cache.add({"a", static_cast<unsigned long>(number)}, MImage(1, 1, 7));
            model.insert(number);
        }
        std::set<int> listed;
        int before = -2;
        for (const auto& run : cache.list("a").held) {
            ASSERT_GT(run.first, before + 1) << "runs that touch are one";
            before = run.last;
            for (int each = run.first; each <= run.last; ++each)
                listed.insert(each);
        }
        ASSERT_EQ(listed, model) << round;
    }
    cache.fail({"a", 100}, "cut");
    cache.fail({"b", 7}, "gone");
    EXPECT_THAT(cache.list("a").failed, testing::ElementsAre(testing::Pair(100, "cut")));
    cache.add({"a", 100}, MImage(1, 1, 7));
    EXPECT_TRUE(cache.list("a").failed.empty());
    cache.eraseIfLessEqual({"a", 0});
    EXPECT_EQ(cache.list("b"), ReadAhead());
}

TEST(PreloaderMessages, AListArrivesAsItWasOrNotAtAll)
{
    const ReadAhead list{{{1, 5}, {9, 2'000'000'000}}, {{7, "x.cbf: cut"}, {8, ""}}};
    const std::string bytes = preloader::pack(list);
    EXPECT_EQ(preloader::unpackList(bytes), list);
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_THROW(preloader::unpackList(bytes.substr(0, length)), morvend::MRuntimeException);
    EXPECT_THROW(preloader::unpackList(bytes + '.'), morvend::MRuntimeException);
    EXPECT_THROW(preloader::unpackList(std::string(64, '\xff')), morvend::MRuntimeException);
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
