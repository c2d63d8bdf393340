// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Requests, results, failures and re-scans of a view's loader.
#include "imagelib/io/FormatRegistry.h"
#include "imagelib/io/MHdf5Writer.h"
#include "logic/loading/ImageLoader.h"
#include "tests/support/EdfFile.h"
#include "tests/support/Processes.h"
#include "tests/support/Regions.h"
#include "tests/support/WaitFor.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>

#include <gmock/gmock.h>

#include <cmath>
#include <csignal>
#include <thread>

namespace {

using morvend::imglib::MImage;
using tarvik::tests::TempFolder;
using tarvik::tests::writeEdf;
using testing::HasSubstr;

class Loader : public testing::Test {
protected:
    static ImageLoader::Data request(const std::string& path, int index = -1)
    {
        ImageLoader::Data request;
        request.path = path;
        request.index = index;
        return request;
    }
    void push(const MImage& image)
    {
        ImageLoader::Data request;
        request.image = image;
        loader.open(ImageLoader::TaskPushImage, request, true);
    }
    void openFile(const std::string& path, bool signalLoadError = true)
    {
        loader.open(ImageLoader::TaskOpenSeries, request(path), signalLoadError);
    }
    void openIndex(int index, bool signalLoadError = true)
    {
        loader.open(ImageLoader::TaskOpenIndex, request("", index), signalLoadError);
    }
    /// Waits for `count` records or errors in all and returns the waiting records.
    std::list<ImageLoader::Data> finish(int count)
    {
        EXPECT_TRUE(waitFor([&] { return done + int(errors.size()) >= count; }));
        done = 0;
        std::list<ImageLoader::Data> records;
        loader.results(records);
        return records;
    }
    /// The one record that comes.
    ImageLoader::Data finishOne()
    {
        const auto records = finish(1);
        EXPECT_EQ(records.size(), 1U);
        return records.empty() ? ImageLoader::Data() : records.front();
    }
    static int firstPixel(const ImageLoader::Data& record)
    {
        return record.image.pixel<int>(0, 0, -1);
    }
    /// The text of the one error that came.
    std::string error()
    {
        finish(1);
        const std::vector<std::string> texts = std::exchange(errors, {});
        EXPECT_EQ(texts.size(), 1U);
        return texts.empty() ? "" : texts.front();
    }

    // Counts on the test's thread; a QSignalSpy would count on the loader's.
    Loader()
    {
        QObject::connect(&loader, &ImageLoader::newImage, &receiver, [this] { ++done; });
        QObject::connect(&loader, &ImageLoader::imageContainerChangedSignal, &receiver,
                         [this] { ++scans; });
        QObject::connect(&loader, &ImageLoader::loadError, &receiver,
                         [this](const QString& text) { errors.push_back(text.toStdString()); });
    }

    ImageLoader loader;
    QObject receiver;
    int done = 0;
    int scans = 0;
    std::vector<std::string> errors;
};

TEST_F(Loader, FinishesARecord)
{
    ImageLoader::Data request;
    request.image = MImage(300, 100, 7);
    request.path = "of no meaning here";
    request.viewportData = ViewportData(1, 2, 3, 4, 5);
    loader.open(ImageLoader::TaskPushImage, request, true);
    const ImageLoader::Data record = finishOne();
    EXPECT_EQ(record.path, "");
    EXPECT_EQ(record.index, 0);
    EXPECT_EQ(record.image.pixel<int>(299, 99, 0), 7);
    EXPECT_TRUE(samePixels(record.mask, MImage(300, 100, 0U)));
    EXPECT_TRUE(samePixels(record.thumbnail, MImage(200, 66, 7)));
    EXPECT_EQ(record.thumbnailMask.height(), 66);
    EXPECT_TRUE(record.thumbnail.optionalData().pixel_mask());
    EXPECT_EQ(record.statistics->mean, 7);
    EXPECT_EQ(record.statistics->histogram.value(7), 30'000U);
    EXPECT_EQ(record.viewportData, ViewportData(1, 2, 3, 4, 5));
    std::list<ImageLoader::Data> rest;
    loader.results(rest);
    EXPECT_TRUE(rest.empty()) << "records are handed over once";
}

TEST_F(Loader, ComputesTheRegionOfTheRequest)
{
    ImageLoader::Data request;
    request.image = MImage(300, 100, 7);
    request.statisticsData = regions::box(298, 0, 302, 5);
    loader.open(ImageLoader::TaskPushImage, request, true);
    const ImageLoader::Data inside = finishOne();
    EXPECT_EQ(inside.roiStatistics.integral, 2 * 5 * 7);
    EXPECT_EQ(inside.roiStatistics.area, 4 * 5);

    request.statisticsData.endX = 2'000'000'000;
    testing::internal::CaptureStderr();
    loader.open(ImageLoader::TaskPushImage, request, true);
    EXPECT_EQ(finishOne().roiStatistics.area, 0) << "an image doesn't fail because of a region";
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("too large: 2000000000"));
}

TEST_F(Loader, PrintsATimingLineForEachStepBeforeTheViewHears)
{
    std::string printed;
    QObject::connect(
        &loader, &ImageLoader::newImage, &loader,
        [&] { printed = testing::internal::GetCapturedStdout(); }, Qt::DirectConnection);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    push(MImage(3, 2, -1));  // gaps, so that the statistics are made twice
    finish(1);
    EXPECT_THAT(printed, testing::MatchesRegex("TIME COMPUTING MASK: [0-9]+\n"
                                               "               SUBTOTAL TIME LOADING: [0-9]+\n"
                                               "TIME FOR COMPUTING STATISTICS: [0-9]+\n"
                                               "TIME FOR COMPUTING HISTOGRAM: [0-9]+\n"
                                               "TIME FOR COMPUTING CONTRAST: [0-9]+\n"
                                               "               SUBTOTAL TIME LOADING: [0-9]+\n"
                                               "TIME FOR ADDITIONAL COMPUTATION: [0-9]+\n"
                                               "               SUBTOTAL TIME LOADING: [0-9]+\n"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "an image needs no mask";
}

TEST_F(Loader, ValuesOfGapsAreMaskedWhereThereIsNoMask)
{
    const auto load = [&](std::initializer_list<unsigned short> gaps) {
        MImage image(300, 100, static_cast<unsigned short>(7));
        for (const unsigned short gap : gaps)
            static_cast<unsigned short*>(image.data())[gap] = 65535;
        push(image);
        return finishOne();
    };
    const auto clean = load({});
    const auto first = load({0, 500});
    EXPECT_EQ(first.mask.pixel<int>(200, 1, 0), 1);
    EXPECT_EQ(first.image.optionalData().pixel_mask()->identity(), first.mask.identity());
    EXPECT_EQ(first.thumbnailMask.pixel<int>(133, 0, 0), 1);
    EXPECT_EQ(first.statistics->sum, 7 * (30'000 - 2));
    EXPECT_EQ(first.statistics->histogram.value(65535), 30'000U - 2);
    EXPECT_EQ(load({0, 500}).mask.identity(), first.mask.identity()) << "images share a mask";
    const auto more = load({0, 500, 501});
    EXPECT_EQ(more.statistics->mean, 7);
    EXPECT_EQ(more.mask.pixel<int>(201, 1, 0), 1);
    const auto fewer = load({501});
    EXPECT_EQ(fewer.mask.pixel<int>(200, 1, 1), 0);
    EXPECT_EQ(fewer.statistics->histogram.value(7), 30'000U - 1);
    EXPECT_EQ(load({}).mask.identity(), clean.mask.identity());

    MImage negative(300, 100, -1);
    static_cast<int*>(negative.data())[0] = -5;
    push(negative);
    EXPECT_TRUE(samePixels(finishOne().mask, MImage(300, 100, 0U))) << "counts, not marks";

    MImage infinite(300, 100, 7.0F);
    static_cast<float*>(infinite.data())[500] = HUGE_VALF;
    push(infinite);
    const auto finite = finishOne();
    EXPECT_EQ(finite.mask.pixel<int>(200, 1, 0), 3);
    EXPECT_EQ(finite.statistics->mean, 7);
}

TEST_F(Loader, KeepsTheOrderOfRequestsAndTheBoundsOfTheSeries)
{
    EXPECT_EQ(loader.firstIndex(), -1);
    EXPECT_EQ(loader.lastIndex(), -1);
    for (int i = 0; i < 30; ++i)
        push(MImage(2, 2, i));
    const auto records = finish(30);
    ASSERT_EQ(records.size(), 30U);
    int expected = 0;
    for (const ImageLoader::Data& record : records) {
        EXPECT_EQ(record.index, expected);
        EXPECT_EQ(firstPixel(record), expected++);
    }
    EXPECT_EQ(loader.firstIndex(), 5) << "a series in memory keeps 25 images";
    EXPECT_EQ(loader.lastIndex(), 29);
    openIndex(17);
    EXPECT_EQ(firstPixel(finishOne()), 17);
}

TEST_F(Loader, FailuresAreToldInWords)
{
    openIndex(3);
    EXPECT_THAT(error(), HasSubstr("3"));
    push(MImage(2, 2, 1));
    finish(1);
    openIndex(-2);
    EXPECT_EQ(error(), "There is no image -2 in the series, which goes from 0 to 0");
    push(MImage());
    EXPECT_EQ(error(), "The image has no pixels");
    openFile("/nowhere/x_1.cbf");
    EXPECT_THAT(error(), HasSubstr("/nowhere/x_1.cbf"));
    openFile("");
    EXPECT_NE(error(), "");
    EXPECT_EQ(loader.lastIndex(), 0) << "the series before is still there";
}

TEST_F(Loader, QuietFailureYieldsNothingAtAll)
{
    openFile("/nowhere/x_1.cbf", false);
    openIndex(-1, false);
    push(MImage(2, 2, 1));
    EXPECT_EQ(finish(1).size(), 1U);
    EXPECT_TRUE(errors.empty());
}

TEST_F(Loader, EmptyTaskQueueDropsWhatHasNotBegun)
{
    QSemaphore begun, goOn;
    QObject::connect(
        &loader, &ImageLoader::newImage, &loader,
        [&] {
            begun.release();
            goOn.acquire();
        },
        Qt::DirectConnection);
    for (int i = 0; i < 4; ++i)
        push(MImage(2, 2, i));
    begun.acquire();  // the first job is running now
    std::thread other([&] {
        QThread::msleep(50);
        push(MImage(2, 2, 100));  // comes while the queue is being emptied
        goOn.release(10);
    });
    loader.emptyTaskQueue();
    other.join();
    EXPECT_EQ(finishOne().index, 0) << "the running job's result is delivered";
    push(MImage(2, 2, 5));
    EXPECT_EQ(finishOne().index, 1) << "later requests are taken again";
}

TEST_F(Loader, EndsWithWorkInItsQueue)
{
    const MImage image(512, 512, 1);
    for (int i = 0; i < 50; ++i)
        push(image);
}

TEST_F(Loader, BurstOfUpdatesYieldsOneScanNowAndOneLater)
{
    QElapsedTimer clock;
    clock.start();
    // A new loader scans after 100 ms, so that a burst right after its making would be one scan.
    ASSERT_TRUE(waitFor([&] {
        loader.update();
        return scans > 0;
    }));
    for (int i = 0; i < 20; ++i) {
        loader.update();
        QTest::qWait(2);
    }
    const auto periods = static_cast<int>(clock.elapsed() / 100);  // 0 but on a slow machine
    EXPECT_LE(scans, 1 + periods);
    EXPECT_TRUE(waitFor([&] { return scans >= 2; }));
    EXPECT_LE(scans, 2 + periods);
}

class FileLoader : public Loader {
protected:
    void write(int number) { writeEdf(folder, name(number), 2, {number, 1, 2, 3}); }
    static std::string name(int number) { return "x_" + std::to_string(1000 + number) + ".edf"; }
    const TempFolder folder;
};

TEST_F(FileLoader, GoesThroughASeriesOfFiles)
{
    for (int i = 1; i <= 3; ++i)
        write(i);
    testing::internal::CaptureStdout();
    openFile(folder / name(2));
    const ImageLoader::Data opened = finishOne();
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("\nTIME OPENING SERIES: [0-9]+\n"
                                      "TIME LOADING IMAGE: [0-9]+\nTIME COMPUTING MASK: .*"));
    EXPECT_EQ(opened.index, 1002);
    EXPECT_EQ(opened.path, folder / name(2));
    EXPECT_EQ(firstPixel(opened), 2);
    EXPECT_EQ(loader.firstIndex(), 1001);
    EXPECT_EQ(loader.lastIndex(), 1003);

    testing::internal::CaptureStdout();
    openIndex(1003);
    EXPECT_EQ(firstPixel(finishOne()), 3);
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::MatchesRegex("\nTIME LOADING IMAGE FROM CACHE: [0-9]+\n"
                                      "TIME LOADING IMAGE FROM SOURCE: [0-9]+\n"
                                      "TIME COMPUTING MASK: .*"));
    openIndex(1004);
    EXPECT_THAT(error(), HasSubstr("1004"));
    write(4);
    loader.update();
    ASSERT_TRUE(waitFor([&] { return scans == 1; }));
    EXPECT_EQ(loader.lastIndex(), 1004);
    openIndex(1004);
    EXPECT_EQ(finishOne().path, folder / name(4));

    push(MImage(2, 2, 9));  // begins a series in memory
    const ImageLoader::Data pushed = finishOne();
    EXPECT_EQ(pushed.index, 0);
    EXPECT_EQ(pushed.path, "");
    EXPECT_EQ(loader.lastIndex(), 0);
}

TEST_F(FileLoader, EndsWhileItsReaderHangs)
{
    using morvend::imglib::FormatRegistry;
    const std::string path = folder / "x_master.h5";
    morvend::imglib::MHdf5Writer(path, 1, {}, morvend::imglib::MCompression::NONE)
        .write(MImage(8, 8, 1));
    FormatRegistry::readHdf5OutOfProcess(true);
    auto hanging = std::make_unique<ImageLoader>();
    hanging->open(ImageLoader::TaskOpenSeries, request(path), true);
    EXPECT_TRUE(waitFor([&] { return !hanging->loading(); }));
    const std::vector<pid_t> readers = tarvik::tests::children();
    FormatRegistry::readHdf5OutOfProcess(false);
    ASSERT_EQ(readers.size(), 1U);
    ASSERT_EQ(::kill(readers.front(), SIGSTOP), 0);
    for (int i = 0; i < 3; ++i)
        hanging->open(ImageLoader::TaskOpenIndex, request("", 1), true);
    QTest::qWait(50);
    EXPECT_TRUE(hanging->loading());
    const auto begin = std::chrono::steady_clock::now();
    hanging.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_TRUE(tarvik::tests::waitFor([&] { return tarvik::tests::hasEnded(readers.front()); }));
}

TEST_F(FileLoader, MaskWorkIsDoneOnce)
{
    for (int i = 1; i <= 3; ++i)
        write(i);
    openFile(folder / name(1));
    const auto first = finishOne();
    openIndex(1002);
    const auto second = finishOne();
    EXPECT_EQ(first.mask.identity(), second.mask.identity());
    EXPECT_EQ(first.thumbnailMask.identity(), second.thumbnailMask.identity());
    EXPECT_NE(first.statistics, second.statistics);
}

}  // namespace
