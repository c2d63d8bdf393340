// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reading ahead: how far, in which series, and what ends it.
#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/ipc/SegmentPool.h"
#include "logic/preload/Preloader.h"
#include "tests/support/EdfFile.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

namespace {

using morvend::imglib::MImage;
using morvend::imglib::SegmentPool;
using tarvik::tests::TempFolder;
using tarvik::tests::writeEdf;
using Numbers = std::vector<unsigned long>;

class ReadAhead : public testing::Test {
protected:
    static std::string name(int number) { return "x_" + std::to_string(number) + ".edf"; }
    /// A frame of 16 bytes whose first pixel is its number.
    void write(int number) { writeEdf(folder, name(number), 2, {number, 1, 2, 3}); }
    void writeAll(int first, int last)
    {
        for (int i = first; i <= last; ++i)
            write(i);
    }
    int firstPixel(const std::string& path, unsigned long number)
    {
        return cache[{path, number}].pixel<int>(0, 0, -1);
    }
    Numbers held(const std::string& path) const
    {
        Numbers numbers;
        for (unsigned long i = 0; i < 50; ++i)
            if (cache.count({path, i}))
                numbers.push_back(i);
        return numbers;
    }
    /// Reads ahead to the end. @returns whether the cache holds exactly these then
    testing::AssertionResult holds(Preloader& preloader, const std::string& path,
                                   const Numbers& numbers)
    {
        preloader.waitUntilIdle();
        return held(path) == numbers
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << testing::PrintToString(held(path));
    }

    const TempFolder folder;
    PreloaderCache cache;
};

TEST_F(ReadAhead, FollowsThePositionToTheEnd)
{
    writeAll(1, 9);
    const std::string path = folder / name(2);
    Preloader preloader(cache);
    preloader.run({path, 2});
    EXPECT_TRUE(holds(preloader, path, {3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(firstPixel(path, 7), 7);
    preloader.run({path, 6});
    EXPECT_TRUE(holds(preloader, path, {7, 8, 9}));
    EXPECT_EQ(cache.fill(), 3 * 16U);
    preloader.run({path, 5});
    EXPECT_TRUE(holds(preloader, path, {1, 2, 3, 4, 6, 7, 8, 9}))
        << "those that were erased are read again, and those in front, where a step back leads";
    preloader.run({path, 40});
    EXPECT_TRUE(holds(preloader, path, {})) << "a number behind the end";
}

TEST_F(ReadAhead, GoesBackWithStepsBack)
{
    writeAll(1, 19);
    const std::string path = folder / name(10);
    Preloader preloader(cache, 8 * 16 - 1);
    preloader.run({path, 10});
    EXPECT_TRUE(holds(preloader, path, {11, 12, 13, 14, 15, 16, 17, 18}));
    preloader.run({path, 9});
    EXPECT_TRUE(holds(preloader, path, {4, 5, 6, 7, 8, 10, 11, 12}));
    preloader.run({path, 8});
    EXPECT_TRUE(holds(preloader, path, {3, 4, 5, 6, 7, 9, 10, 11}));
    preloader.run({path, 9});
    EXPECT_TRUE(holds(preloader, path, {10, 11, 12, 13, 14, 15, 16, 17}));
}

TEST_F(ReadAhead, ForgetsTheSeriesThatIsWanted)
{
    writeAll(1, 3);
    const std::string path = folder / name(1);
    Preloader preloader(cache);
    preloader.run({path, 1});
    preloader.forget(folder / name(2));
    EXPECT_TRUE(holds(preloader, path, {2, 3})) << "not for another one";
    preloader.forget(path);
    EXPECT_TRUE(holds(preloader, path, {}));
    EXPECT_EQ(cache.fill(), 0U);
    preloader.run({path, 1});
    EXPECT_TRUE(holds(preloader, path, {2, 3}));
}

TEST_F(ReadAhead, GoesOnWhenTheSeriesGrows)
{
    writeAll(1, 2);
    const std::string path = folder / name(1);
    Preloader preloader(cache);
    preloader.run({path, 1});
    EXPECT_TRUE(holds(preloader, path, {2}));
    write(3);
    EXPECT_TRUE(holds(preloader, path, {2})) << "not by itself";
    preloader.run({path, 1});
    EXPECT_TRUE(holds(preloader, path, {2})) << "the same wish again does nothing";
    preloader.run({path, 2});
    EXPECT_TRUE(holds(preloader, path, {3}));
}

TEST_F(ReadAhead, AnotherSeriesTakesThePlaceOfTheFirst)
{
    const TempFolder other;
    writeAll(1, 2);
    writeEdf(other, name(1), 2, {1, 1, 1, 1});
    writeEdf(other, name(2), 2, {22, 1, 1, 1});
    const std::string first = folder / name(1), second = other / name(1);
    Preloader preloader(cache);
    preloader.run({first, 1});
    EXPECT_TRUE(holds(preloader, first, {2}));
    preloader.run({second, 1});
    EXPECT_TRUE(holds(preloader, second, {2}));
    EXPECT_TRUE(holds(preloader, first, {}));
    EXPECT_EQ(firstPixel(second, 2), 22);
}

TEST_F(ReadAhead, TellsWhatCanNotBeReadAndGoesOn)
{
    for (const int i : {1, 2, 4, 7})
        write(i);
    for (const int damaged : {3, 5})  // of which the second is nothing new
        folder.write(name(damaged), "{ HeaderID = 1 ; Size = 4 }\n");
    const std::string path = folder / name(1);
    testing::internal::CaptureStderr();
    {
        Preloader preloader(cache);
        preloader.run({path, 1});
        EXPECT_TRUE(holds(preloader, path, {2, 4, 7}))
            << "numbers that the series lacks are stepped over";
        preloader.run({folder / "nothing_1.edf", 1});
        EXPECT_TRUE(holds(preloader, path, {2, 4, 7}))
            << "nothing is erased for a series that isn't there";
        preloader.run({path, 4});
        EXPECT_TRUE(holds(preloader, path, {7}));
    }
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_THAT(errors, testing::MatchesRegex("Preloader: Error opening [^\n]*x_1.edf:3\n"
                                              "          [^\n]*x_3.edf[^\n]*\n"
                                              "Preloader: Error opening [^\n]*nothing_1.edf\n"
                                              "          [^\n]*nothing_1.edf[^\n]*\n"));
}

TEST_F(ReadAhead, ASeriesThatCouldNotBeOpenedMayBeAskedForAgain)
{
    const std::string path = folder / name(1);
    Preloader preloader(cache);
    preloader.run({path, 1});
    preloader.waitUntilIdle();
    writeAll(1, 2);
    preloader.run({path, 1});
    EXPECT_TRUE(holds(preloader, path, {2}));
}

TEST_F(ReadAhead, EndsWithOneImageBeyondTheLimit)
{
    writeAll(1, 9);
    const std::string path = folder / name(1);
    Preloader preloader(cache, 47);
    preloader.run({path, 1});
    EXPECT_TRUE(holds(preloader, path, {2, 3, 4}));
    preloader.run({path, 3});
    EXPECT_TRUE(holds(preloader, path, {4, 5, 6}));
}

TEST_F(ReadAhead, ReadsAnewWhatWasRewritten)
{
    writeAll(1, 2);
    const std::string path = folder / name(1);
    Preloader preloader(cache);
    preloader.run({path, 1});
    EXPECT_TRUE(holds(preloader, path, {2}));
    writeEdf(folder, name(2), 2, {77, 1, 2, 3});
    const auto later = std::filesystem::last_write_time(path) + std::chrono::seconds(5);
    std::filesystem::last_write_time(folder / name(2), later);
    preloader.run({path, 0});
    EXPECT_TRUE(holds(preloader, path, {1, 2}));
    EXPECT_EQ(firstPixel(path, 2), 77);
}

TEST_F(ReadAhead, DecodesIntoSharedMemoryThatIsUsedAgain)
{
    for (int i = 1; i <= 14; ++i)
        writeEdf(folder, name(i), 512, std::vector<std::int32_t>(512 * 512, i));
    const std::string path = folder / name(1);
    Preloader preloader(cache, 4U << 20);
    for (unsigned long i = 1; i < 10; ++i) {
        preloader.run({path, i});
        ASSERT_TRUE(waitFor([&] { return cache.count({path, i + 4}) && !cache.count({path, i}); }));
        const MImage image = cache[{path, i + 1}];
        EXPECT_TRUE(SegmentPool::process()->find(*image.imageData().buffer()));
        EXPECT_EQ(image.pixel<int>(511, 511, -1), int(i) + 1);
    }
    EXPECT_LE(SegmentPool::process()->usage().segments, 7U);
}

TEST_F(ReadAhead, FollowsAnHdf5SeriesThatIsReplaced)
{
    // As a file, and as a group in it by its path.
    for (const std::string dataset : {"", "::/entry/data"}) {
        const std::string file = folder / "x_master.h5";
        const std::string path = file + dataset;
        const auto record = [&](int value, int frames) {
            morvend::imglib::MHdf5Writer writer(file, frames, {},
                                                morvend::imglib::MCompression::NONE);
            for (int i = 1; i <= frames; ++i)
                writer.write(MImage(8, 4, unsigned(value + i)));
        };
        record(100, 3);
        Preloader preloader(cache);
        preloader.run({path, 1});
        EXPECT_TRUE(holds(preloader, path, {2, 3}));
        EXPECT_FALSE((cache[{path, 2}].optionalData().nexusTree().empty()));
        record(200, 4);
        preloader.run({path, 2});
        EXPECT_TRUE(holds(preloader, path, {3, 4}));
        EXPECT_EQ(firstPixel(path, 3), 203);
    }
}

}  // namespace
