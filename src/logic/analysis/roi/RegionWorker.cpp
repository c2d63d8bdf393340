// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The queue that all views share, and its thread.
#include "logic/analysis/roi/RegionWorker.h"

#include "logic/analysis/roi/RoiComputer.h"
#include "logic/support/Console.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

using morvend::imglib::MImage;

/// One request. Members that aren't const belong to the computing thread, and to the view once it
/// is finished.
struct RegionWorker::Job {
    const RegionWorker* const view;
    const MImage image;
    const MImage mask;
    const StatisticsData region;
    std::stop_source stop;
    bool finished = false;  // under the queue's mutex
    RoiStatistics result;

    void compute()
    {
        RoiComputer computer;
        computer.setImage(image);
        computer.setMask(mask);
        computer.setStatisticsData(region);
        computer.setStopToken(stop.get_token());
        try {
            result = computer.computeOrWarn();
        } catch (const std::exception& error) {
            console::warn(std::string("WARNING: ") + error.what() + '\n');
        }
    }
};

class RegionWorker::Queue {
public:
    /// The one queue of the process; it lives as long as a view has it.
    static std::shared_ptr<Queue> shared()
    {
        static std::mutex mutex;
        static std::weak_ptr<Queue> last;
        const std::lock_guard lock(mutex);
        auto queue = last.lock();
        if (!queue)
            last = queue = std::make_shared<Queue>();
        return queue;
    }
    ~Queue()
    {
        {
            const std::lock_guard lock(_mutex);
            _ended = true;
        }
        _changed.notify_all();
        if (_thread.joinable())
            _thread.join();
    }

    void add(std::shared_ptr<Job> job)
    {
        const std::lock_guard lock(_mutex);
        _waiting.push_back(std::move(job));
        if (!_thread.joinable())
            _thread = std::thread([this] { _run(); });
        _changed.notify_all();
    }
    /// Removes a job that has not begun; stops it otherwise.
    void drop(const std::shared_ptr<Job>& job)
    {
        job->stop.request_stop();
        takeBack(job);
    }
    /// @returns false if the job has begun
    bool takeBack(const std::shared_ptr<Job>& job)
    {
        const std::lock_guard lock(_mutex);
        return std::erase(_waiting, job) != 0;
    }
    bool finished(const Job& job)
    {
        const std::lock_guard lock(_mutex);
        return job.finished;
    }
    void awaitEnd(const Job& job)
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [&] { return job.finished; });
    }
    /// Waits until no job of a view is running.
    void awaitEndOf(const RegionWorker& view)
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [&] { return !_running || _running->view != &view; });
    }

private:
    void _run()
    {
        std::unique_lock lock(_mutex);
        while (true) {
            _changed.wait(lock, [this] { return _ended || !_waiting.empty(); });
            if (_ended)
                return;
            _running = std::move(_waiting.front());
            _waiting.pop_front();
            lock.unlock();
            _running->compute();
            lock.lock();
            _running->finished = true;
            _changed.notify_all();
            if (!_running->stop.stop_requested()) {
                lock.unlock();
                _running->view->_done();
                lock.lock();
            }
            auto ended = std::move(_running);
            _changed.notify_all();
            // Without the lock: the job may hold the last copy of many pixels.
            lock.unlock();
            ended.reset();
            lock.lock();
        }
    }

    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<std::shared_ptr<Job>> _waiting;
    std::shared_ptr<Job> _running;
    bool _ended = false;
    std::thread _thread;
};

RegionWorker::RegionWorker(std::function<void()> done)
    : _queue(Queue::shared())
    , _done(std::move(done))
{}

RegionWorker::~RegionWorker()
{
    cancel();
    _queue->awaitEndOf(*this);
}

void RegionWorker::request(const MImage& image, const MImage& mask, const StatisticsData& region)
{
    cancel();
    _job = std::make_shared<Job>(Job{this, image, mask, region, {}, false, {}});
    _queue->add(_job);
}

void RegionWorker::cancel()
{
    if (_job)
        _queue->drop(_job);
    _job.reset();
}

bool RegionWorker::take(RoiStatistics& result)
{
    return _job && _queue->finished(*_job) && wait(result);
}

bool RegionWorker::wait(RoiStatistics& result)
{
    if (!_job)
        return false;
    if (_queue->takeBack(_job))
        _job->compute();
    else
        _queue->awaitEnd(*_job);
    result = std::move(_job->result);
    _job.reset();
    return true;
}
