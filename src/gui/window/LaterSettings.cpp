// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/LaterSettings.h"

#include "logic/loading/WorkerPool.h"

#include <QSettings>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
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
    std::map<QString, QVariant> unwritten;  // by set()
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
    std::deque<Write> writes;
    for (;;) {
        {
            const std::lock_guard lock(all.mutex);
            const auto again = [&](const QString& key) {
                return std::any_of(all.writes.begin(), all.writes.end(),
                                   [&](const Write& write) { return write.key == key; });
            };
            for (const Write& written : writes)
                if (!again(written.key))
                    all.unwritten.erase(written.key);
            writes.clear();
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
    {
        const std::lock_guard lock(queue().mutex);
        queue().unwritten[key] = value;
    }
    change(key, [value](const QVariant&) { return value; });
}

QVariant later_settings::value(const QString& key)
{
    {
        const std::lock_guard lock(queue().mutex);
        const auto found = queue().unwritten.find(key);
        if (found != queue().unwritten.end())
            return found->second;
    }
    return QSettings().value(key);
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
