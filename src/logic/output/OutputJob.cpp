// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/output/OutputJob.h"

#include "imagelib/io/formats/base/Cancellation.h"
#include "logic/loading/WorkerPool.h"

#include <QCoreApplication>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stop_token>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// The works that run, so that the end of the application does not cut a file short.
class Running {
public:
    static Running& works()
    {
        static auto* const instance = new Running;  // workers may outlive static objects
        return *instance;
    }
    void add(int change)
    {
        const std::lock_guard lock(_mutex);
        _count += change;
        _ended.notify_all();
    }
    void await()
    {
        std::unique_lock lock(_mutex);
        _ended.wait_for(lock, 10s, [this] { return _count == 0; });
    }

private:
    std::mutex _mutex;
    std::condition_variable _ended;
    int _count = 0;
};

}  // namespace

struct OutputJob::State {
    std::stop_source stop;
    std::mutex mutex;
    OutputJob* receiver;  // null when nobody waits any more; under the mutex

    explicit State(OutputJob* job)
        : receiver(job)
    {}

    /// Calls on the receiver's thread, if it is still there.
    template <class Call>
    void report(Call call)
    {
        const std::lock_guard lock(mutex);
        if (receiver)
            QMetaObject::invokeMethod(
                receiver, [job = receiver, call] { call(*job); }, Qt::QueuedConnection);
    }

    void run(const Work& work)
    {
        QString error;
        try {
            const morvend::imglib::CancelScope scope(stop.get_token());
            work([this, last = -1](double share) mutable {
                const int percent = static_cast<int>(share * 100);
                if (std::exchange(last, percent) != percent)
                    report([percent](OutputJob& job) { emit job.progressSignal(percent); });
            });
        } catch (const std::exception& failure) {
            error = QString::fromUtf8(failure.what());
            if (error.isEmpty())
                error = QStringLiteral("The file cannot be written");
        }
        report([error](OutputJob& job) { emit job.finishedSignal(error); });
    }
};

OutputJob::OutputJob(Work work, QObject* parent)
    : QObject(parent)
    , _state(std::make_shared<State>(this))
{
    [[maybe_unused]] static const auto connected =
        connect(qApp, &QCoreApplication::aboutToQuit, [] { Running::works().await(); });
    Running::works().add(1);
    WorkerPool::process().post([state = _state, work = std::move(work)]() mutable {
        state->run(work);
        work = {};  // its pixels
        Running::works().add(-1);
    });
}

OutputJob::~OutputJob() { cancel(); }

void OutputJob::cancel()
{
    _state->stop.request_stop();
    const std::lock_guard lock(_state->mutex);
    _state->receiver = nullptr;
}
