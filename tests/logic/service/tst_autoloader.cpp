// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pace of movies and watched series, by a clock that is turned by hand.
#include "logic/service/AutoLoader.h"
#include "tests/logic/service/ServiceTest.h"
#include "tests/support/EdfFile.h"

#include <atomic>

namespace {

using namespace tarvik::tests;
using std::chrono::milliseconds;

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

class Pace : public ServiceTest {
protected:
    Pace()
    {
        for (int i = 0; i < 9; ++i)
            writeEdf(folder, "p_" + std::to_string(i) + ".edf", 1, {i});
        view->openImage((folder / "p_0.edf").c_str());
        arrive(view);
        const auto count = [this] { ++requests; };
        QObject::connect(&loader, &AutoLoader::nextImageSignal, &loader, count,
                         Qt::DirectConnection);
        QObject::connect(&loader, &AutoLoader::lastImageSignal, &loader, count,
                         Qt::DirectConnection);
    }
    ~Pace() override { loader.stopLoading(); }

    /// Waits for the other thread; meanwhile nothing reaches the view.
    template <class Condition>
    static bool seen(Condition&& condition)
    {
        const auto guard = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition() && std::chrono::steady_clock::now() < guard)
            std::this_thread::yield();
        return condition();
    }
    /// Announces a scan, and waits until the thread sleeps again or has made another request.
    void scan()
    {
        const int sleeps = clock->sleeps, before = requests;
        emit view->imageContainerChangedSignal();
        EXPECT_TRUE(seen([&] { return clock->sleeps > sleeps || requests > before; }));
    }
    /// Waits until an image is shown and the thread sleeps for a time.
    bool shows(int number)
    {
        return waitFor([&] { return view->imageIndex() == number && clock->left(); });
    }

    const TempFolder folder;
    TarvikService* view = newView();
    HandClock* const clock = new HandClock;
    std::atomic<int> requests = 0;
    AutoLoader loader{view, std::unique_ptr<MovieClock>(clock)};
};

TEST_F(Pace, OfAMovieIsNotChangedByScans)
{
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(shows(1));
    EXPECT_EQ(clock->left(), milliseconds(200));
    for (int i = 0; i < 3; ++i)
        scan();
    EXPECT_EQ(requests, 1);
    clock->turn(milliseconds(199));
    scan();
    EXPECT_EQ(requests, 1);
    clock->turn(milliseconds(1));
    EXPECT_TRUE(seen([&] { return requests == 2; }));
}

TEST_F(Pace, OfAMovieHasAPauseAfterASlowImage)
{
    loader.startLoading(AutoLoader::Movie);
    ASSERT_TRUE(shows(1));
    clock->turn(milliseconds(200));
    ASSERT_TRUE(seen([&] { return requests == 2 && !clock->left(); }));
    clock->turn(milliseconds(500));
    ASSERT_TRUE(shows(2));
    EXPECT_EQ(clock->left(), milliseconds(10));
    scan();
    EXPECT_EQ(requests, 2);
    clock->turn(milliseconds(10));
    EXPECT_TRUE(seen([&] { return requests == 3; }));
}

TEST_F(Pace, ScanIsNoAnswerToARequestUnderWay)
{
    for (const auto mode : {AutoLoader::Movie, AutoLoader::WatchSeries}) {
        const int before = requests;
        loader.startLoading(mode);
        ASSERT_TRUE(seen([&] { return requests == before + 1; }));
        for (int i = 0; i < 3; ++i)
            scan();
        EXPECT_EQ(requests, before + 1) << mode;
        EXPECT_FALSE(clock->left()) << "it waits for the image";
        loader.stopLoading();
        EXPECT_TRUE(loader.wait());
    }
}

}  // namespace
