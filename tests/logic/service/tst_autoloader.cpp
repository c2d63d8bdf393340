// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pace of movies and watched series, by a clock that is turned by hand.
#include "logic/service/AutoLoader.h"
#include "tests/logic/service/HandView.h"
#include "tests/support/WaitFor.h"

#include <gmock/gmock.h>

#include <atomic>

namespace {

using namespace tarvik::tests;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

/// Stands still until it is turned on.
class HandClock : public MovieClock {
public:
    Time now() override
    {
        const std::lock_guard lock(_mutex);
        return _now;
    }
    void sleep(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
               Time until) override
    {
        {
            const std::lock_guard mine(_mutex);
            _condition = &condition;
            _sleepers = lock.mutex();
            _until = until;
        }
        ++sleeps;
        condition.wait(lock);
    }
    void turn(milliseconds by)
    {
        {
            const std::lock_guard lock(_mutex);
            _now += by;
        }
        const std::lock_guard asleep(*_sleepers);
        _condition->notify_all();
    }
    /// Time until the thread is to wake up, none without a limit.
    std::optional<milliseconds> left()
    {
        const std::lock_guard lock(_mutex);
        if (_until == never)
            return {};
        return std::chrono::duration_cast<milliseconds>(_until - _now);
    }
    std::atomic<int> sleeps = 0;

private:
    std::mutex _mutex;
    Time _now{};
    Time _until = never;
    std::condition_variable* _condition = nullptr;
    std::mutex* _sleepers = nullptr;
};

class Pace : public testing::Test {
protected:
    Pace()
    {
        view.last = 8;
        const auto count = [this] {
            sleepsAtRequest = clock->sleeps.load();
            ++requests;
        };
        QObject::connect(&loader, &AutoLoader::nextImageSignal, &loader, count,
                         Qt::DirectConnection);
        QObject::connect(&loader, &AutoLoader::lastImageSignal, &loader, count,
                         Qt::DirectConnection);
    }

    /// Waits for the other thread; meanwhile nothing reaches the view.
    template <class Condition>
    static bool seen(Condition&& condition)
    {
        const auto guard = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition() && std::chrono::steady_clock::now() < guard)
            std::this_thread::yield();
        return condition();
    }
    /// Waits until so many requests were signalled, and the thread sleeps until they are answered.
    bool asked(int times)
    {
        return seen([&] { return requests == times; }) &&
               seen([&] { return clock->sleeps > sleepsAtRequest; });
    }
    /// Lets what was signalled reach the view. @returns what the view was asked for
    std::vector<std::string> arrived()
    {
        QCoreApplication::processEvents();
        return view.take();
    }
    /// Shows an image, and waits until the thread sleeps for a time.
    bool pausesAfter(int image)
    {
        const int sleeps = clock->sleeps;
        view.show(image);
        return seen([&] { return clock->sleeps > sleeps && clock->left(); });
    }
    /// Announces a scan, and waits until the thread sleeps again or has made another request.
    void scan()
    {
        const int sleeps = clock->sleeps, before = requests;
        view.endScan(view.last);
        EXPECT_TRUE(seen([&] { return clock->sleeps > sleeps || requests > before; }));
    }

    HandView view;
    HandClock* const clock = new HandClock;
    std::atomic<int> requests = 0;
    std::atomic<int> sleepsAtRequest = 0;
    AutoLoader loader{view, std::unique_ptr<MovieClock>(clock)};
};

TEST_F(Pace, OfAMovieIsNotChangedByScans)
{
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(asked(1));
    EXPECT_THAT(arrived(), ElementsAre("next 1"));
    ASSERT_TRUE(pausesAfter(1));
    EXPECT_EQ(clock->left(), milliseconds(200));
    for (int i = 0; i < 3; ++i)
        scan();
    EXPECT_EQ(requests, 1);
    clock->turn(milliseconds(199));
    scan();
    EXPECT_EQ(requests, 1);
    clock->turn(milliseconds(1));
    EXPECT_TRUE(asked(2));
}

TEST_F(Pace, OfAMovieHasAPauseAfterASlowImage)
{
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(asked(1));
    clock->turn(milliseconds(500));
    ASSERT_TRUE(pausesAfter(1));
    EXPECT_EQ(clock->left(), milliseconds(10));
    clock->turn(milliseconds(10));
    EXPECT_TRUE(asked(2));
}

TEST_F(Pace, LastStepTakesWhatIsLeftAndTheMovieGoesOnWhenTheSeriesGrows)
{
    loader.setStepSize(5);
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(asked(1));
    EXPECT_THAT(arrived(), ElementsAre("next 5"));
    ASSERT_TRUE(pausesAfter(5));
    clock->turn(milliseconds(200));
    ASSERT_TRUE(asked(2));
    EXPECT_THAT(arrived(), ElementsAre("next 3"));
    ASSERT_TRUE(pausesAfter(8));
    clock->turn(milliseconds(200));
    ASSERT_TRUE(seen([&] { return !clock->left(); }));
    scan();
    EXPECT_EQ(requests, 2) << "it sleeps at the end";
    view.endScan(9);
    ASSERT_TRUE(asked(3));
    EXPECT_THAT(arrived(), ElementsAre("next 1"));
}

TEST_F(Pace, ScanAnswersARequestThatFailedOnly)
{
    for (const auto mode : {AutoLoader::Movie, AutoLoader::WatchSeries}) {
        const int before = requests;
        loader.startLoading(mode);
        ASSERT_TRUE(asked(before + 1));
        scan();
        EXPECT_EQ(requests, before + 1) << "it has not reached the view yet";
        EXPECT_THAT(arrived(), ElementsAre(mode == AutoLoader::Movie ? "next 1" : "last"));
        scan();
        EXPECT_EQ(requests, before + 1) << "the view still loads";
        EXPECT_FALSE(clock->left()) << "it waits for the image";
        view.busy = false;
        scan();
        if (mode == AutoLoader::Movie)
            clock->turn(milliseconds(200));
        EXPECT_TRUE(asked(before + 2));
        loader.stopLoading();
        EXPECT_TRUE(loader.wait());
        EXPECT_FALSE(view.watched());
        EXPECT_THAT(arrived(), IsEmpty()) << "nothing comes after a stop";
    }
}

TEST_F(Pace, RequestOfAnEarlierStartNeverArrivesAndNothingWaitsForIt)
{
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(asked(1));
    loader.startLoading(AutoLoader::WatchSeries);
    ASSERT_TRUE(seen([&] { return clock->left().has_value(); }))
        << "it waits for nothing but the pace";
    clock->turn(milliseconds(200));
    ASSERT_TRUE(asked(2));
    EXPECT_THAT(arrived(), ElementsAre("last"));
    loader.stopLoading();
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(asked(3));
    EXPECT_THAT(arrived(), ElementsAre("next 1"));
}

}  // namespace
