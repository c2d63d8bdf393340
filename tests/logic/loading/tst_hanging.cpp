// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Views whose files do not answer: nobody waits for them, and nothing of them stays.
#include "logic/loading/ImageLoader.h"
#include "tests/support/EdfFile.h"
#include "tests/support/HangingReads.h"
#include "tests/support/Processes.h"

#include <QSemaphore>
#include <QTest>

#include <gmock/gmock.h>

#include <atomic>

namespace {

using tarvik::tests::HangingReads;
using tarvik::tests::TempFolder;
using testing::HasSubstr;

constexpr int longest = 60'000;  // ms

/// A loader with what has come from it.
struct View {
    View()
    {
        QObject::connect(&loader, &ImageLoader::newImage, &receiver, [this] {
            std::list<ImageLoader::Data> records;
            loader.results(records);
            for (const auto& record : records)
                events.push_back(std::to_string(record.image.pixel<int>(0, 0, -1)));
        });
        QObject::connect(&loader, &ImageLoader::loadError, &receiver,
                         [this](const QString& text) { events.push_back(text.toStdString()); });
        QObject::connect(&loader, &ImageLoader::waitingSignal, &receiver,
                         [this](const QString& text) { said.push_back(text.toStdString()); });
    }
    void open(const std::string& path)
    {
        ImageLoader::Data request;
        request.path = path;
        loader.open(ImageLoader::TaskOpenSeries, request, true);
    }
    void openIndex(int index)
    {
        ImageLoader::Data request;
        request.index = index;
        loader.open(ImageLoader::TaskOpenIndex, request, true);
    }
    bool await(std::size_t count)
    {
        return QTest::qWaitFor([&] { return events.size() >= count; }, longest);
    }

    ImageLoader loader;
    QObject receiver;
    std::vector<std::string> events;  // first pixels, and failures
    std::vector<std::string> said;
};

class HangingFile : public testing::Test {
protected:
    std::string write(const std::string& name, int value)
    {
        tarvik::tests::writeEdf(folder, name, 2, {value, 1, 2, 3});
        return folder / name;
    }
    std::size_t openFiles() const
    {
        std::size_t count = 0;
        for (const auto& each : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code error;
            const auto path = std::filesystem::read_symlink(each, error);
            count += path.string().starts_with(folder.path()) ? 1U : 0U;
        }
        return count;
    }

    const TempFolder folder;
    const std::string dead = write("dead.edf", 1);
    const std::string good = write("good_1.edf", 2);
    const std::string next = write("good_2.edf", 3);
};

TEST_F(HangingFile, HoldsNoViewThatCloses)
{
    auto view = std::make_unique<View>();
    const HangingReads hang(dead);
    view->open(dead);
    view->open(good);
    ASSERT_TRUE(HangingReads::waitFor(1));
    view.reset();
    EXPECT_EQ(HangingReads::count(), 1) << "the read still hangs";
}

TEST_F(HangingFile, LeavesNothingOpenWhenItAnswersAtLast)
{
    {
        View view;
        const auto hang = std::make_unique<HangingReads>(dead);
        view.open(dead);
        ASSERT_TRUE(HangingReads::waitFor(1));
        view.open(good);
        ASSERT_TRUE(view.await(1));
        EXPECT_EQ(openFiles(), 1U);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return openFiles() == 0; }, longest));
}

TEST_F(HangingFile, GivesWayToTheNextFileOfItsView)
{
    View view;
    view.open(good);
    ASSERT_TRUE(view.await(1));
    {
        const HangingReads hang(dead);
        view.open(dead);
        view.openIndex(2);  // of the file that hangs: has no meaning without it
        ASSERT_TRUE(HangingReads::waitFor(1));
        view.open("/nowhere/x.edf");
        ASSERT_TRUE(view.await(2));
        EXPECT_THAT(view.events[1], HasSubstr("/nowhere/x.edf"));
        EXPECT_EQ(view.loader.lastIndex(), 2);
        view.openIndex(2);
        ASSERT_TRUE(view.await(3));
        EXPECT_EQ(view.events[2], "3") << "the series on show is still there";
        EXPECT_EQ(HangingReads::count(), 1);
    }
    view.openIndex(1);
    ASSERT_TRUE(view.await(4));
    EXPECT_EQ(view.events[3], "2") << "and not the file that hung";
}

TEST_F(HangingFile, TakesNoStepAlongThatWasAskedForAfterTheNextFile)
{
    write("good_3.edf", 4);
    View view;
    const HangingReads hang(dead);
    view.open(dead);
    ASSERT_TRUE(HangingReads::waitFor(1));
    view.open(good);
    view.loader.step(1, {}, true);
    view.loader.step(1, {}, true);  // one job with the step before, as long as that waits
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view.events.empty() && view.events.back() == "4"; },
                                longest));
    EXPECT_EQ(view.events.front(), "2");
}

TEST_F(HangingFile, IsNotWaitedForByWhatWasDropped)
{
    const std::string frame = tarvik::tests::edfFrame({1, 2, 3, 4});
    const std::string stack = folder.write("stack.edf", frame + frame);
    View view;
    view.open(stack);
    ASSERT_TRUE(view.await(1));
    folder.write("stack.edf", frame + frame + frame);
    const HangingReads hang(stack);
    view.loader.update();  // the scan hangs
    ASSERT_TRUE(QTest::qWaitFor([] { return HangingReads::count() == 1; }, longest));
    view.openIndex(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.said.empty(); }, longest));
    EXPECT_THAT(view.said.back(), HasSubstr("image 1 of " + stack));
    view.loader.dropTaskQueue();
    EXPECT_FALSE(view.loader.loading());
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.said.back().empty(); }, longest));
    EXPECT_EQ(HangingReads::count(), 1);
}

TEST_F(HangingFile, IsSpokenOf)
{
    View view;
    {
        const HangingReads hang(dead);
        view.open(dead);
        ASSERT_TRUE(QTest::qWaitFor([&] { return view.said.size() >= 3; }, longest));
        EXPECT_EQ(view.said[0], "Loading " + dead + " ...");
        EXPECT_EQ(view.said[1], "Waiting for " + dead + " for 2 s ...");
    }
    ASSERT_TRUE(view.await(1));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.said.back().empty(); }, longest));
    EXPECT_EQ(view.events[0], "1");
}

TEST_F(HangingFile, LeavesThreadsForAllOtherViews)
{
    const HangingReads hang(dead);
    std::vector<std::unique_ptr<View>> views(20);
    for (auto& view : views) {
        view = std::make_unique<View>();
        view->open(dead);
    }
    View other;
    other.open(good);
    ASSERT_TRUE(other.await(1));
    EXPECT_EQ(other.events[0], "2");
}

/// Jobs that hold their threads until they are let go.
class Pool : public testing::Test {
protected:
    ~Pool() override
    {
        goOn.release(100);
        EXPECT_TRUE(tarvik::tests::waitFor([&] { return pool.usage().threads == 0; }));
    }
    void hold(const void* owner = nullptr)
    {
        pool.post(
            [this] {
                ++held;
                goOn.acquire();
                --held;
            },
            owner);
    }
    bool holds(int count)
    {
        return QTest::qWaitFor([&] { return held == count; }, longest);
    }

    QSemaphore goOn;
    std::atomic<int> held = 0;
    static constexpr auto soon = std::chrono::milliseconds(5);
    static constexpr auto never = std::chrono::hours(1);
    WorkerPool::Limits limits{.threads = 2, .mostThreads = 5, .patience = soon, .idle = soon};
    WorkerPool pool{limits};
};

TEST_F(Pool, GrowsByTheJobsThatWaitUpToItsBound)
{
    for (int i = 0; i < 8; ++i)
        hold();
    EXPECT_TRUE(holds(5));
    EXPECT_EQ(pool.usage().threads, 5U);
    EXPECT_EQ(pool.usage().queued, 3U);
}

TEST_F(Pool, GoesOnWithoutAJobThatIsLeftBehind)
{
    WorkerPool patient{{.threads = 2, .patience = never, .idle = soon}};
    QSemaphore release;
    std::atomic<int> begun = 0;
    const auto job = [&] {
        ++begun;
        release.acquire();
    };
    patient.post(job, this);
    patient.post(job);
    patient.post(job);
    ASSERT_TRUE(QTest::qWaitFor([&] { return begun == 2; }, longest));
    EXPECT_EQ(patient.usage().queued, 1U);
    patient.leaveBehind(this);
    EXPECT_TRUE(QTest::qWaitFor([&] { return begun == 3; }, longest));
    EXPECT_EQ(patient.usage().threads, 3U);
    release.release(3);
    EXPECT_TRUE(tarvik::tests::waitFor([&] { return patient.usage().threads == 0; }));
}

TEST_F(Pool, RunsJobsWhileItTidiesUp)
{
    WorkerPool patient{{.threads = 2, .patience = never, .idle = soon}};
    QSemaphore tidying, goOnTidying, done;
    patient.setTidy([&] {
        tidying.release();
        goOnTidying.acquire();
    });
    patient.post([] {});
    tidying.acquire();
    EXPECT_EQ(patient.usage().busy, 1U);
    patient.post([&] { done.release(); });
    EXPECT_TRUE(done.tryAcquire(1, longest));
    patient.setTidy({});
    goOnTidying.release();
    EXPECT_TRUE(tarvik::tests::waitFor([&] { return patient.usage().threads == 0; }));
}

TEST_F(Pool, BackgroundJobsGiveWayUntilTheirPatienceEnds)
{
    WorkerPool patient{{.threads = 2, .patience = never, .idle = soon}};
    QSemaphore release, begun;
    std::string order;
    patient.post([&] {
        begun.release();
        release.acquire();
        order += 'a';
    });
    ASSERT_TRUE(begun.tryAcquire(1, longest));
    patient.postBackground([&] {
        order += 'c';
        begun.release();
    });
    patient.post([&] { begun.release(); });  // a thread is free
    ASSERT_TRUE(begun.tryAcquire(1, longest));
    patient.post([&] { order += 'b'; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return patient.usage().queued == 1; }, longest));
    release.release();
    ASSERT_TRUE(begun.tryAcquire(1, longest));
    EXPECT_EQ(order.back(), 'c');

    pool.post([&] { release.acquire(); });
    pool.postBackground([&] { begun.release(); });
    EXPECT_TRUE(begun.tryAcquire(1, longest)) << "in spite of the job that runs";
    release.release();
    EXPECT_TRUE(tarvik::tests::waitFor([&] { return patient.usage().threads == 0; }));
}

TEST_F(Pool, StrandsKeepTheirOrderAndTakeTurns)
{
    WorkerPool one{{.threads = 1, .patience = never, .idle = soon}};
    const auto left = Strand::create(one);
    const auto right = Strand::create(one);
    std::string order;
    QSemaphore begin;
    one.post([&] { begin.acquire(); });
    for (const char each : {'1', '2', '3'}) {
        left->post([&order, each] { order += each; });
        right->post([&order, each] { order += static_cast<char>(each - '1' + 'a'); });
    }
    begin.release();
    left->waitForDone();
    right->waitForDone();
    EXPECT_EQ(order, "1a2b3c");
}

}  // namespace
