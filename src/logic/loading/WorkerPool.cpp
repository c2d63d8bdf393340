// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Threads, their number, and the watch over jobs that wait.
#include "logic/loading/WorkerPool.h"

#include "logic/loading/GiveBack.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <pthread.h>
#include <time.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

/// Time from the end of a view until what it left in pools is freed.
constexpr std::chrono::milliseconds tidyPause{1000};

/// Time that a thread has spent on processors.
nanoseconds timeUsed(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

}  // namespace

struct WorkerPool::State : std::enable_shared_from_this<State> {
    struct Entry {
        Job job;
        const void* owner = nullptr;
        bool tidies = false;
        bool inBackground = false;
        Clock::time_point since{};
    };
    struct Worker {
        clockid_t clock{};
        const void* owner = nullptr;
        bool busy = false;
        bool counted = true;
        bool inBackground = false;
        // The state of the job at the watch's last look.
        bool seen = false;
        nanoseconds used{};
    };
    using Workers = std::list<Worker>;
    using Lock = std::unique_lock<std::mutex>;

    explicit State(const Limits& limits_)
        : limits(limits_)
    {}

    void startWhereNeeded();
    void watchWhereNeeded();
    void work(Workers::iterator self);
    std::optional<Entry> next(Lock& lock);
    bool tidyIsDue(Clock::time_point now, bool last) const;
    bool backgroundIsDue(Clock::time_point now) const;
    Clock::time_point nextLook(Clock::time_point last) const;
    Entry takeNext(Clock::time_point now);
    void add(Entry entry, std::deque<Entry>& entries);
    void watch();
    void look();
    std::size_t waiting() const { return queue.size() + background.size(); }
    std::size_t counted() const
    {
        return static_cast<std::size_t>(std::ranges::count(workers, true, &Worker::counted));
    }

    const Limits limits;
    mutable std::mutex mutex;
    std::condition_variable work_;  // there is work, or the time to tidy up has changed
    std::condition_variable end;
    std::deque<Entry> queue;
    std::deque<Entry> background;
    Workers workers;
    std::size_t idle = 0;  // workers without job
    bool watching = false;
    bool ended = false;
    std::function<void()> tidy;
    bool untidy = false;                      // true if there was work since the last time
    std::optional<Clock::time_point> tidyAt;  // if it was requested
};

/// A thread for each job in the queue, up to the limits. The caller holds the mutex.
void WorkerPool::State::startWhereNeeded()
{
    while (waiting() > idle && counted() < limits.threads && workers.size() < limits.mostThreads) {
        const auto worker = workers.emplace(workers.end());
        ++idle;
        try {
            std::thread([state = shared_from_this(), worker] { state->work(worker); }).detach();
        } catch (const std::system_error&) {
            --idle;
            workers.erase(worker);
            break;  // the existing ones take one job after the other
        }
    }
    watchWhereNeeded();
}

void WorkerPool::State::watchWhereNeeded()
{
    if (watching || (queue.size() <= idle && background.empty()))
        return;
    try {
        std::thread([state = shared_from_this()] { state->watch(); }).detach();
        watching = true;
    } catch (const std::system_error&) {
        // The next job that comes tries again.
    }
}

void WorkerPool::State::work(Workers::iterator self)
{
    Lock lock(mutex);
    ::pthread_getcpuclockid(::pthread_self(), &self->clock);
    while (std::optional<Entry> entry = next(lock)) {
        self->busy = true;
        self->owner = entry->owner;
        self->inBackground = entry->inBackground;
        lock.unlock();
        entry->job();
        entry->job = nullptr;
        lock.lock();
        *self = {.clock = self->clock};
        untidy = untidy || !entry->tidies;
        if (!background.empty())
            work_.notify_one();  // there may be room for another one now
        if (counted() > limits.threads)
            break;  // another one has replaced this one while its job waited
        ++idle;
    }
    workers.erase(self);
}

/// Waits for a job. The worker counts as busy afterwards. @returns nothing if its thread is to end
std::optional<WorkerPool::State::Entry> WorkerPool::State::next(Lock& lock)
{
    const auto last = Clock::now() + limits.idle;
    std::optional<Entry> entry;
    for (;;) {
        const auto now = Clock::now();
        if (!queue.empty() || backgroundIsDue(now) || tidyIsDue(now, now >= last))
            entry = takeNext(now);
        if (entry || ended || now >= last)
            break;
        work_.wait_until(lock, nextLook(last));
    }
    --idle;
    return entry;
}

/// @param last  this worker is about to end, which is the time to tidy up where all are idle
bool WorkerPool::State::tidyIsDue(Clock::time_point now, bool last) const
{
    return tidy && !ended &&
           ((tidyAt && now >= *tidyAt) || (last && untidy && idle == workers.size()));
}

bool WorkerPool::State::backgroundIsDue(Clock::time_point now) const
{
    if (background.empty())
        return false;
    std::size_t running = 0;
    std::size_t others = queue.size();
    for (const Worker& worker : workers) {
        if (worker.busy && worker.counted)
            ++(worker.inBackground ? running : others);
    }
    return running < std::max<std::size_t>(limits.threads / 2, 1) &&
           (others == 0 || now - background.front().since >= limits.patience);
}

/// When a worker without job has to look again, notified or not.
Clock::time_point WorkerPool::State::nextLook(Clock::time_point last) const
{
    Clock::time_point look = tidyAt ? std::min(last, *tidyAt) : last;
    if (!background.empty()) {
        // What is overdue waits for another background job, whose end is notified.
        const auto now = Clock::now();
        const auto left = limits.patience - (now - background.front().since);
        if (left > nanoseconds(0) && left < look - now)
            look = now + std::chrono::duration_cast<Clock::duration>(left);
    }
    return look;
}

/// The first job of the queue, else of the background, else to tidy up: a job as any other, which
/// others need not wait for.
WorkerPool::State::Entry WorkerPool::State::takeNext(Clock::time_point now)
{
    Entry entry{.job = tidy, .tidies = true};
    if (!queue.empty()) {
        entry = std::move(queue.front());
        queue.pop_front();
    } else if (backgroundIsDue(now)) {
        entry = std::move(background.front());
        background.pop_front();
    } else {
        untidy = false;
        tidyAt.reset();
    }
    return entry;
}

/// Watches the running jobs as long as others wait for a thread.
void WorkerPool::State::watch()
{
    Lock lock(mutex);
    while (!ended && (queue.size() > idle || !background.empty())) {
        end.wait_for(lock, limits.patience);
        look();
    }
    watching = false;
}

void WorkerPool::State::look()
{
    for (Worker& worker : workers) {
        if (!worker.busy || !worker.counted)
            continue;
        const nanoseconds used = timeUsed(worker.clock);
        if (std::exchange(worker.seen, true) &&
            used - worker.used < nanoseconds(limits.patience) / 10)
            worker.counted = false;
        worker.used = used;
    }
    startWhereNeeded();
}

WorkerPool& WorkerPool::process()
{
    static WorkerPool& pool = *[] {
        const std::size_t cores = std::thread::hardware_concurrency();
        auto* const made = new WorkerPool({.threads = std::clamp<std::size_t>(cores, 4, 16)});
        made->setTidy(giveBackMemory);
        return made;
    }();
    return pool;
}

WorkerPool::WorkerPool(const Limits& limits)
    : _state(std::make_shared<State>(limits))
{}

WorkerPool::~WorkerPool()
{
    std::deque<State::Entry> dropped;
    std::deque<State::Entry> droppedBackground;
    const std::lock_guard lock(_state->mutex);
    _state->ended = true;
    dropped.swap(_state->queue);
    droppedBackground.swap(_state->background);
    _state->work_.notify_all();
    _state->end.notify_all();
}

void WorkerPool::State::add(Entry entry, std::deque<Entry>& entries)
{
    const std::lock_guard lock(mutex);
    entries.push_back(std::move(entry));
    startWhereNeeded();
    if (background.empty())
        work_.notify_one();
    else
        work_.notify_all();  // the notified one may have to wait, and then needs to know how long
}

void WorkerPool::post(Job job, const void* owner)
{
    _state->add({.job = std::move(job), .owner = owner}, _state->queue);
}

void WorkerPool::postBackground(Job job, const void* owner)
{
    _state->add(
        {.job = std::move(job), .owner = owner, .inBackground = true, .since = Clock::now()},
        _state->background);
}

void WorkerPool::leaveBehind(const void* owner)
{
    const std::lock_guard lock(_state->mutex);
    for (State::Worker& worker : _state->workers)
        if (worker.busy && worker.owner == owner)
            worker.counted = false;
    _state->startWhereNeeded();
}

void WorkerPool::setTidy(std::function<void()> tidy)
{
    const std::lock_guard lock(_state->mutex);
    _state->tidy = std::move(tidy);
}

void WorkerPool::askToTidy()
{
    {
        const std::lock_guard lock(_state->mutex);
        if (!_state->tidy)
            return;
        _state->tidyAt = Clock::now() + tidyPause;
    }
    post([] {});  // whoever takes it learns the time
}

WorkerPool::Usage WorkerPool::usage() const
{
    const std::lock_guard lock(_state->mutex);
    const std::size_t threads = _state->workers.size();
    return {threads, threads - _state->idle, threads - _state->counted(), _state->waiting()};
}
