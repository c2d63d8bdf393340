// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/LaterSettings.h"

#include "logic/loading/WorkerPool.h"

#include <QSettings>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace {

struct Write {
    QString key;
    std::function<QVariant(const QVariant&)> change;
};

/// Shared with the worker, hence never destroyed.
struct Queue {
    std::mutex mutex;
    std::condition_variable empty;
    std::deque<Write> writes;
    bool working = false;
};

Queue& queue()
{
    static Queue& all = *new Queue;
    return all;
}

/// Takes what is queued, until nothing is left.
void work()
{
    Queue& all = queue();
    for (;;) {
        std::deque<Write> writes;
        {
            const std::lock_guard lock(all.mutex);
            all.writes.swap(writes);
            if (writes.empty()) {
                all.working = false;
                all.empty.notify_all();
                return;
            }
        }
        QSettings settings;
        settings.sync();
        for (const Write& write : writes)
            settings.setValue(write.key, write.change(settings.value(write.key)));
    }
}

}  // namespace

void later_settings::set(const QString& key, const QVariant& value)
{
    change(key, [value](const QVariant&) { return value; });
}

void later_settings::change(const QString& key, std::function<QVariant(const QVariant&)> change)
{
    Queue& all = queue();
    {
        const std::lock_guard lock(all.mutex);
        all.writes.push_back({key, std::move(change)});
        if (std::exchange(all.working, true))
            return;
    }
    WorkerPool::process().post(work);
}

void later_settings::finish()
{
    Queue& all = queue();
    std::unique_lock lock(all.mutex);
    all.empty.wait_for(lock, std::chrono::seconds(1), [&all] { return !all.working; });
}
