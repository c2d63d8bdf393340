// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/regionseries/RegionSeries.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/MImageSeries.h"
#include "logic/analysis/roi/RegionNumbers.h"
#include "logic/loading/MaskFixup.h"
#include "logic/loading/WorkerPool.h"
#include "logic/support/FailureSummary.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <stop_token>
#include <thread>
#include <utility>

using morvend::imglib::MImage;
using morvend::imglib::MImageSeries;
using morvend::imglib::MTerminateException;

namespace {

/// While one lane computes, the reader of another one decodes, which itself keeps all cores busy.
/// More lanes only need more memory.
constexpr int MostLanes = 4;
/// A lane opens the file for itself, which pays from some images on.
constexpr int ImagesOfALane = 8;
/// Small images share a job, as threads that take turns cost more than they do. Jobs of a view wait
/// no longer for it than for an image.
constexpr std::chrono::milliseconds JobTime{2};

int lanesFor(int images, int wanted)
{
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    const int most = wanted > 0 ? wanted : std::clamp(cores, 2, MostLanes);
    return std::clamp(images / ImagesOfALane, 1, most);
}

int imagesOf(int first, int last, const morvend::imglib::NumberRanges& gaps)
{
    int images = last - first + 1;
    if (gaps)
        for (const auto& gap : *gaps)
            images -= gap.last - gap.first + 1;
    return images;
}

}  // namespace

struct RegionSeries::Lane {
    explicit Lane(MImageSeries series_)
        : series(std::move(series_))
    {}

    MImageSeries series;
    MaskFixup masks;
    bool open = false;
};

struct RegionSeries::State : std::enable_shared_from_this<State> {
    State(Order order_, std::function<void()> changed_)
        : order(std::move(order_))
        , region(order.region)
        , changed(std::move(changed_))
    {}

    void addLane();
    void post(std::shared_ptr<Lane> lane);
    /// An image of a lane, or some small ones.
    void step(const std::shared_ptr<Lane>& lane);
    bool openFor(Lane& lane);
    /// @returns false after the last
    bool computeNext(Lane& lane);
    /// The next image that nobody has taken, -1 after the last.
    int takeNumber(const MImageSeries& series);
    SeriesPoint compute(Lane& lane, int number);
    void deliver(const SeriesPoint& point);
    void fail(int number, const std::exception& error);
    void endLane();
    void giveUp(const std::string& error);
    /// Calls `changed` unless it was called since the last look. Without the mutex.
    void announce();

    const Order order;
    RegionNumbers region;
    /// Ends the work of all lanes.
    MImageSeries root{1};
    std::atomic<bool> stopped = false;

    std::mutex callMutex;  // over the next
    std::function<void()> changed;

    std::mutex mutex;  // over all below
    News news;
    FailureSummary failures;
    std::set<int> inWork;
    int cursor = -1;  // the number that was taken last
    int lanes = 0;
    int timeouts = 0;
    bool announced = false;
};

void RegionSeries::State::addLane()
{
    {
        const std::lock_guard lock(mutex);
        ++lanes;
    }
    post(std::make_shared<Lane>(root.beside()));
}

void RegionSeries::State::post(std::shared_ptr<Lane> lane)
{
    WorkerPool::process().postBackground(
        [state = shared_from_this(), lane = std::move(lane)] { state->step(lane); }, this);
}

void RegionSeries::State::step(const std::shared_ptr<Lane>& lane)
{
    if (stopped)
        return;
    try {
        const auto end = std::chrono::steady_clock::now() + JobTime;
        bool more = openFor(*lane);
        do
            more = more && computeNext(*lane);
        while (more && !stopped && std::chrono::steady_clock::now() < end);
        if (!more)
            return endLane();
    } catch (const MTerminateException&) {
        return;  // nobody waits
    } catch (const std::exception& error) {
        giveUp(error.what());
        return endLane();
    }
    announce();
    post(lane);
}

bool RegionSeries::State::computeNext(Lane& lane)
{
    const int number = takeNumber(lane.series);
    if (number < 0)
        return false;
    deliver(compute(lane, number));
    return true;
}

bool RegionSeries::State::openFor(Lane& lane)
{
    if (std::exchange(lane.open, true))
        return true;
    std::unique_lock lock(mutex);
    const bool isFirst = news.last < 0;
    lock.unlock();
    try {
        lane.series.open(order.path);
    } catch (const morvend::MException&) {
        if (isFirst)
            throw;
        return false;  // the other lanes go on
    }
    if (!isFirst)
        return true;
    lock.lock();
    news.first = lane.series.first();
    news.last = lane.series.last();
    news.gaps = lane.series.gaps();
    news.images = imagesOf(news.first, news.last, news.gaps);
    const int wanted = lanesFor(news.images, order.lanes);
    lock.unlock();
    for (int i = 1; i < wanted; ++i)
        addLane();
    return true;
}

int RegionSeries::State::takeNumber(const MImageSeries& series)
{
    const std::lock_guard lock(mutex);
    if (!news.error.empty())
        return -1;
    const int number = cursor < 0 ? news.first : series.next(cursor);
    if (number < 0 || number > news.last)
        return -1;
    cursor = number;
    inWork.insert(number);
    return number;
}

SeriesPoint RegionSeries::State::compute(Lane& lane, int number)
{
    SeriesPoint point;
    point.number = number;
    MImage image;
    try {
        image = lane.series.at(number);
        if (image.empty())
            throw morvend::MRuntimeException("The image has no pixels");
    } catch (const MTerminateException&) {
        throw;
    } catch (const std::exception& error) {
        fail(number, error);
        return point;
    }
    const MImage mask = lane.masks.certain(image);
    const RoiStatistics numbers = region.compute(image, mask);
    point.state = numbers.weight > 0 ? SeriesPoint::State::Good : SeriesPoint::State::Masked;
    point.mean = numbers.mean;
    point.sum = numbers.integral;
    point.maximum = numbers.maximum;
    point.intensity = numbers.intensity;
    point.intensitySigma = numbers.intensitySigma;
    return point;
}

void RegionSeries::State::fail(int number, const std::exception& error)
{
    const bool timeout = dynamic_cast<const morvend::MTimeoutException*>(&error) != nullptr;
    const std::lock_guard lock(mutex);
    failures.add(number, error.what());
    timeouts = timeout ? timeouts + 1 : 0;
    if (timeouts >= MostTimeouts && news.error.empty())
        news.error = error.what();
}

void RegionSeries::State::deliver(const SeriesPoint& point)
{
    const std::lock_guard lock(mutex);
    inWork.erase(point.number);
    news.points.push_back(point);
    ++news.done;
    if (point.state != SeriesPoint::State::Failed)
        timeouts = 0;
}

void RegionSeries::State::giveUp(const std::string& error)
{
    const std::lock_guard lock(mutex);
    if (news.error.empty())
        news.error = error.empty() ? "The series can't be read" : error;
}

void RegionSeries::State::endLane()
{
    {
        const std::lock_guard lock(mutex);
        news.finished = --lanes == 0;
    }
    announce();
}

void RegionSeries::State::announce()
{
    {
        const std::lock_guard lock(mutex);
        if (std::exchange(announced, true))
            return;
    }
    const std::lock_guard lock(callMutex);
    if (changed)
        changed();
}

RegionSeries::RegionSeries(Order order, std::function<void()> changed)
    : _state(std::make_shared<State>(std::move(order), std::move(changed)))
{
    _state->addLane();
}

RegionSeries::~RegionSeries()
{
    _state->stopped = true;
    _state->root.cancel();
    WorkerPool::process().leaveBehind(_state.get());
    const std::lock_guard lock(_state->callMutex);
    _state->changed = nullptr;
}

RegionSeries::News RegionSeries::take()
{
    const std::lock_guard lock(_state->mutex);
    State& state = *_state;
    state.announced = false;
    News taken = state.news;
    state.news.points.clear();
    taken.failures = state.failures.lines();
    taken.settled = state.inWork.empty() ? state.cursor : *state.inWork.begin() - 1;
    return taken;
}
