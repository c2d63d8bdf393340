// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/OpenDirectory.h"

#include "logic/loading/WorkerPool.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>
#include <utility>

namespace {

const QString Key = QStringLiteral("ImageDirectory");

/// The folder itself or that of a file; empty if it doesn't exist.
QString existingFolder(const QString& path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return {};
    return info.isDir() ? QDir(path).absolutePath() : info.absolutePath();
}

QString folderOf(const QString& path)
{
    const QString folder = existingFolder(path);
    // Perhaps a data set in a file.
    return folder.isEmpty() ? existingFolder(path.section(QStringLiteral("::/"), 0, 0)) : folder;
}

void store(const QString& folder)
{
    if (!folder.isEmpty())
        QSettings().setValue(Key, folder);
}

}  // namespace

QString open_directory::get()
{
    const QSettings settings;
    const QString folder =
        settings.contains(Key) ? answering(settings.value(Key).toString()) : QString();
    return folder.isEmpty() ? QDir::currentPath() : folder;
}

QString open_directory::answering(const QString& path)
{
    return path.isEmpty() ? QString() : inTime([path] { return existingFolder(path); });
}

QString open_directory::inTime(std::function<QString()> question)
{
    std::promise<QString> promise;
    std::future<QString> answer = promise.get_future();
    // Not a worker, which may have many images to load first.
    std::thread([question = std::move(question), promise = std::move(promise)]() mutable {
        promise.set_value(question());
    }).detach();
    const bool inTime = answer.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
    return inTime ? answer.get() : QString();
}

void open_directory::set(const QString& path) { store(folderOf(path)); }

void open_directory::setSoon(const QString& path)
{
    static std::atomic<unsigned int> last{0};
    WorkerPool::process().post([path, number = ++last] {
        const QString folder = folderOf(path);
        // One that was slow to answer must not take the place of a newer one.
        static std::mutex& mutex = *new std::mutex;
        static unsigned int stored = 0;
        const std::lock_guard lock(mutex);
        if (number < stored || folder.isEmpty())
            return;
        stored = number;
        store(folder);
    });
}
