// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The reader of a series: what it hands on, how it ends, and how it waits.
#include "imagelib/control/MHalvoDetector.h"
#include "imagelib/control/MHalvoMonitor.h"
#include "imagelib/control/MHalvoStream.h"
#include "imagelib/image/MException.h"
#include "logic/detector/FrameRelay.h"
#include "logic/detector/HalvoMonitorWorker.h"
#include "tests/support/SimulatedDetector.h"
#include "tests/support/WaitFor.h"

#include "simulator/Frames.h"

#include <QSemaphore>

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::ContainsRegex;
using testing::ElementsAre;

const std::atomic<bool> Never = false;
using Log = std::vector<std::string>;
constexpr double Short = 0.2, Long = 60;
constexpr std::int64_t FrameBytes = 4L * 96 * 80;

class Reader : public testing::Test {
protected:
    Reader()
    {
        reader->moveToThread(&thread);
        QObject::connect(&thread, &QThread::finished, reader, &QObject::deleteLater);
        QObject::connect(reader, &HalvoMonitorWorker::newSeries, &context,
                         [this](const OptionalData& data, int id) {
                             header = data;
                             log.push_back("series " + std::to_string(id));
                         });
        QObject::connect(reader, &HalvoMonitorWorker::newFrame, &context,
                         [this](const ImageData& frame, int series, int id) {
                             EXPECT_EQ(frame.width(), 96);
                             last = frame;
                             log.push_back(std::to_string(series) + "." + std::to_string(id));
                             if (gives)
                                 budget->giveBack(FrameBytes);
                         });
        QObject::connect(reader, &HalvoMonitorWorker::finished, &context,
                         [this] { log.push_back("finished"); });
        QObject::connect(reader, &HalvoMonitorWorker::error, &context,
                         [this] { log.push_back("error"); });
        thread.start();
        detector.setFrameTime(0.001, Never);
        MHalvoStream control(SimulatedDetector::Host, simulated.port());
        control.setEnabled(true, Never);
        control.setHeaderDetail("all", Never);
    }
    ~Reader() override
    {
        reader->abort();
        thread.quit();
        thread.wait();
    }
    void start(double timeout) { reader->startStream(Host, simulated.port(), timeout); }
    void arm(int images)
    {
        detector.setNImages(images, Never);
        detector.arm(Never);
    }
    void takeSeries(int images)
    {
        arm(images);
        detector.trigger(Never);
    }
    bool reaches(const std::string& event, int times = 1)
    {
        return waitFor([&] { return std::count(log.begin(), log.end(), event) >= times; });
    }
    std::string endByTimeout(int ends)
    {
        testing::internal::CaptureStdout();
        reader->abortOnTimeout();
        EXPECT_TRUE(reaches("finished", ends));
        return testing::internal::GetCapturedStdout();
    }

    const QString Host = SimulatedDetector::Host;
    SimulatedDetector simulated;
    MHalvoDetector detector{SimulatedDetector::Host, simulated.port()};
    const std::shared_ptr<FrameBudget> budget = std::make_shared<FrameBudget>(2 * FrameBytes);
    const std::shared_ptr<SeriesMeter> meter = std::make_shared<SeriesMeter>();
    bool gives = true;
    QObject context;
    QThread thread;
    HalvoMonitorWorker* const reader = new HalvoMonitorWorker(budget, meter);
    OptionalData header;
    ImageData last;
    Log log;
};

TEST_F(Reader, StreamBringsASeriesAndEndsTwice)
{
    start(Short);
    takeSeries(3);
    ASSERT_TRUE(reaches("finished"));
    EXPECT_FLOAT_EQ(*header.wavelength(), 12398.42F / 8047.8F);
    EXPECT_EQ(header.pixel_mask()->width(), 96);
    EXPECT_TRUE(header.nexusTree().find("/entry/instrument/detector/frame_time"));
    ASSERT_TRUE(last.packed);
    const QByteArray sent = tarvik::simulator::Frames({96, 80}).frame(2).bytes;
    EXPECT_EQ(std::memcmp(last.packed->data(), sent.constData(), last.packed->size()), 0);
    EXPECT_THAT(endByTimeout(2), ContainsRegex("^Timeout after 0\\.2[0-9]*seconds\n$"));
    EXPECT_EQ(log, (Log{"series 1", "1.0", "1.1", "1.2", "finished", "finished"}));
}

TEST_F(Reader, WhatIsMissingIsCounted)
{
    struct Row {
        const char* fault;
        Log frames;
        int lost;
    };
    int series = 0;
    start(Long);
    for (const Row& row : {Row{"skip=1 times=2 lose", {"0", "3", "4", "5"}, 2},
                           {"skip=4 lose", {"0", "1", "2", "3"}, 2},
                           {"skip=1 times=1 bad-pixels", {"0", "error", "2", "3", "4", "5"}, 1}}) {
        SCOPED_TRACE(row.fault);
        simulated.heal();
        simulated.fault("STREAM frame " + std::string(row.fault));
        log.clear();
        takeSeries(6);
        ASSERT_TRUE(reaches("finished"));
        const std::string id = std::to_string(++series);
        Log expected{"series " + id};
        for (const std::string& frame : row.frames)
            expected.push_back(frame == "error" ? frame
                                                : std::string(id).append(".").append(frame));
        expected.emplace_back("finished");
        EXPECT_EQ(log, expected);
        EXPECT_TRUE(waitFor([&] { return meter->progress().lost == row.lost; }));
    }
}

TEST_F(Reader, TheNextStartTakesOverTheReadingThatStillWaits)
{
    start(Long);
    takeSeries(1);
    ASSERT_TRUE(reaches("finished"));
    reader->abortOnTimeout();
    log.clear();
    arm(3);
    start(Short);
    detector.trigger(Never);
    ASSERT_TRUE(reaches("finished"));
    EXPECT_EQ(meter->progress().received, 3);
    endByTimeout(2);
    EXPECT_EQ(log, (Log{"series 2", "2.0", "2.1", "2.2", "finished", "finished"}));
}

TEST_F(Reader, AStartAtAnotherAddressEndsTheOldReadingWithoutAWord)
{
    const SimulatedDetector other;
    MHalvoStream(SimulatedDetector::Host, other.port()).setEnabled(true, Never);
    start(Long);
    takeSeries(1);
    ASSERT_TRUE(reaches("finished"));
    log.clear();
    reader->startStream(Host, other.port(), Long);
    MHalvoDetector second(SimulatedDetector::Host, other.port());
    second.setNImages(1, Never);
    second.arm(Never);
    second.trigger(Never);
    ASSERT_TRUE(reaches("finished"));
    EXPECT_THAT(log, ElementsAre("series 1", "1.0", "finished"));
}

TEST_F(Reader, AnAbortIsNotOvertakenByTheStartBeforeIt)
{
    QSemaphore held;
    QMetaObject::invokeMethod(
        reader, [&] { held.acquire(); }, Qt::QueuedConnection);
    testing::internal::CaptureStdout();
    start(Long);
    reader->abort();
    held.release();
    EXPECT_TRUE(reaches("finished"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Aborted\n");
}

TEST_F(Reader, ASlowWriterHoldsTheReaderUpAndAnAbortEndsThat)
{
    gives = false;
    start(Long);
    takeSeries(5);
    ASSERT_TRUE(waitFor([&] { return meter->progress().received == 3; }));
    settle();
    EXPECT_THAT(log, ElementsAre("series 1", "1.0", "1.1"));
    budget->giveBack(FrameBytes);
    ASSERT_TRUE(reaches("1.2"));
    EXPECT_EQ(budget->taken(), 2 * FrameBytes);
    reader->abort();
    EXPECT_TRUE(reaches("finished"));
    EXPECT_THAT(log, testing::Not(testing::Contains("1.3")));
}

TEST_F(Reader, ABreakOfTheNetworkCostsNoFrameThatArrived)
{
    detector.setFrameTime(0.01, Never);
    start(Long);
    arm(60);
    std::thread trigger([&] { EXPECT_THROW(detector.trigger(Never), MHttpException); });
    ASSERT_TRUE(reaches("1.10"));
    simulated.vanish(200);
    trigger.join();
    ASSERT_TRUE(reaches("finished"));
    const SeriesProgress progress = meter->progress();
    EXPECT_EQ(progress.received + progress.lost, 60);
    EXPECT_EQ(std::int64_t(log.size()), progress.received + 2);
}

class MonitorReader : public Reader {
protected:
    MonitorReader()
    {
        monitor.setEnabled(true, Never);
        monitor.setBufferSize(100, Never);
        monitor.clear(Never);
    }
    MHalvoMonitor monitor{SimulatedDetector::Host, simulated.port()};
};

TEST_F(MonitorReader, KnowsASeriesByItsFirstFrame)
{
    takeSeries(3);
    reader->startMonitor(Host, simulated.port(), Short);
    ASSERT_TRUE(reaches("1.2"));
    EXPECT_FLOAT_EQ(*header.wavelength(), 12398.42F / 8047.8F);
    takeSeries(2);
    ASSERT_TRUE(reaches("2.1"));
    EXPECT_THAT(endByTimeout(1), ContainsRegex("Timeout after"));
    EXPECT_EQ(log, (Log{"series 1", "1.0", "1.1", "1.2", "series 2", "2.0", "2.1", "finished"}));

    log.clear();
    takeSeries(2);
    monitor.nextAll(60'000, Never);
    reader->startMonitor(Host, simulated.port(), Long);
    ASSERT_TRUE(reaches("3.1"));
    EXPECT_THAT(log, ElementsAre("3.1"));
}

TEST_F(MonitorReader, AnEndlessRunOfErrorsIsPaced)
{
    simulated.fault("GET */next nonsense");
    takeSeries(1);
    reader->startMonitor(Host, simulated.port(), Long);
    ASSERT_TRUE(reaches("error", 11));
    QElapsedTimer clock;
    clock.start();
    const auto before = std::count(log.begin(), log.end(), "error");
    ASSERT_TRUE(reaches("error", int(before) + 4));
    EXPECT_GE(clock.elapsed(), 500);
    // It goes on as soon as there is something to read, and an abort ends it without a word.
    simulated.heal();
    ASSERT_TRUE(reaches("1.0"));
    reader->abort();
    thread.quit();
    thread.wait();
    settle();
    EXPECT_EQ(log.back(), "1.0");
}

TEST(FrameRelay, KeepsTheNewestAndTheOrder)
{
    const auto meter = std::make_shared<SeriesMeter>();
    FrameRelay relay(meter);
    Log log;
    QObject::connect(&relay, &FrameRelay::newSeries,
                     [&](const OptionalData&, int id) { log.push_back("s" + std::to_string(id)); });
    QObject::connect(&relay, &FrameRelay::newFrame, [&](const ImageData&, int series, int id) {
        log.push_back(std::to_string(series) + "." + std::to_string(id));
    });
    std::thread other([&] {
        relay.addSeries({}, 1);
        for (int i = 0; i < 4; ++i)
            relay.addFrame({2, 2, 1U}, 1, i);
        relay.addSeries({}, 2);
        relay.addSeries({}, 3);
        relay.addFrame({2, 2, 1U}, 3, 0);
    });
    other.join();
    EXPECT_THAT(log, testing::IsEmpty());
    settle();
    EXPECT_EQ(log, (Log{"s1", "1.3", "s3", "3.0"}));
    EXPECT_EQ(meter->progress().shown, 2);
    EXPECT_EQ(meter->progress().leftOut, 3);
}

}  // namespace
