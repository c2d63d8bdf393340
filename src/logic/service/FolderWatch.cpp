// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The thread of a watch.
#include "logic/service/FolderWatch.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

constexpr std::uint32_t changes = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY |
                                  IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

/// Reads all that waits at a descriptor.
void drain(int fd)
{
    std::array<char, 4096> ignored;
    while (::read(fd, ignored.data(), ignored.size()) > 0) {
    }
}

/// Waits for either descriptor. @returns whether the first one has something
bool wait(int first, int second, int timeout)
{
    std::array<pollfd, 2> fds{pollfd{first, POLLIN, 0}, pollfd{second, POLLIN, 0}};
    return ::poll(fds.data(), fds.size(), timeout) > 0 && fds[0].revents != 0;
}

}  // namespace

/// What the thread shares with its owner, for as long as either lives. Without the descriptors,
/// which the system may refuse, there is still the poll.
struct FolderWatch::Shared {
    Shared(std::function<void()>&& changed_, int pollPeriod_)
        : pollPeriod(pollPeriod_)
        , changed(std::move(changed_))
    {}
    ~Shared()
    {
        ::close(wake);
        ::close(events);
    }
    /// The folder to watch; none at the end.
    std::optional<std::string> wanted()
    {
        const std::lock_guard lock(mutex);
        return changed ? std::optional(folder) : std::nullopt;
    }
    void tell()
    {
        const std::lock_guard lock(mutex);
        if (changed && !std::exchange(told, true))
            changed();
    }

    const int pollPeriod;
    const int wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    const int events = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    std::mutex mutex;
    std::string folder;
    bool told = false;              // and not acknowledged yet
    std::function<void()> changed;  // empty at the end
};

FolderWatch::FolderWatch(std::function<void()> changed, int pollPeriod)
    : _shared(std::make_shared<Shared>(std::move(changed), pollPeriod))
{
    try {
        std::thread([shared = _shared] { _run(shared); }).detach();
    } catch (const std::system_error&) {
        // If no thread can be made, growth is noticed only when the series is next used.
    }
}

FolderWatch::~FolderWatch()
{
    {
        const std::lock_guard lock(_shared->mutex);
        _shared->changed = nullptr;
    }
    ::eventfd_write(_shared->wake, 1);
}

void FolderWatch::setFolder(const std::string& folder)
{
    {
        const std::lock_guard lock(_shared->mutex);
        _shared->folder = folder;
    }
    ::eventfd_write(_shared->wake, 1);
}

void FolderWatch::lookAgain()
{
    const std::lock_guard lock(_shared->mutex);
    _shared->told = false;
}

void FolderWatch::_run(const std::shared_ptr<Shared>& shared)
{
    std::string folder;
    int watch = -1;
    while (const std::optional<std::string> wanted = shared->wanted()) {
        const bool moves = *wanted != folder;
        if (moves && watch >= 0)
            ::inotify_rm_watch(shared->events, watch);
        folder = *wanted;
        // Each time, since a folder that was replaced is no longer watched. One that can't be
        // watched is left to the poll.
        watch = folder.empty() ? -1 : ::inotify_add_watch(shared->events, folder.c_str(), changes);
        if (!moves && wait(shared->wake, shared->events, shared->pollPeriod)) {
            drain(shared->wake);
            continue;
        }
        drain(shared->events);
        shared->tell();
        wait(shared->wake, -1, shortestPeriod);
    }
}
