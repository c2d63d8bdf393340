// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The thread of a queue's end: it finds peers, notices when they go, and writes what had to wait.
#include "imagelib/ipc/QueueEnd.h"

#include <array>
#include <iterator>

#include <sys/eventfd.h>
#include <sys/socket.h>

namespace morvend::imglib {

using namespace std::chrono_literals;

namespace {

/// How long an end that closes tries to hand over what waits.
constexpr auto LingerTime = 1s;
constexpr auto HelloTime = 250ms;
/// Interval for polling what gives no signal.
constexpr auto PollTime = 1ms;
constexpr auto FaultTime = 100ms;

}  // namespace

void QueueEnd::wakeThread() { ::eventfd_write(_wake.get(), 1); }

void QueueEnd::run()
{
    for (;;) {
        Link link;
        {
            const std::lock_guard lock(_mutex);
            if (_closing)
                break;
            link = _link;
        }
        try {
            if (link)
                serve(link);
            else
                seek();
        } catch (const std::exception& exception) {
            complain(_name, exception.what());
            waitFor(_wake.get(), POLLIN, Deadline(FaultTime));
        }
        eventfd_t ignored = 0;
        ::eventfd_read(_wake.get(), &ignored);
    }
    try {
        handOver();
    } catch (const std::exception& exception) {
        complain(_name, exception.what());
    }
}

void QueueEnd::handOver()
{
    Link link = _link;  // no other thread is left to change it
    const Deadline hello(HelloTime);
    while (!link && !_outbox.empty() && !hello.passed()) {
        if ((link = _finder.seek()))
            join(link);
        else if (!_finder.meeting())
            break;
        else
            waitFor(_finder.fd(), POLLIN, hello);
    }
    _finder.close();
    const Deadline deadline(LingerTime);
    bool stalled = false;
    while (link && !flush(link, stalled) && !deadline.passed())
        waitFor(link->socket.get(), stalled ? 0 : POLLOUT, deadline.sooner(PollTime));
}

void QueueEnd::seek()
{
    Link link;
    std::string fault;
    try {
        link = _finder.seek();
    } catch (const QueueNameTaken& taken) {
        fault = taken.what();
    }
    {
        const std::lock_guard lock(_mutex);
        _fault = fault;
        if (!fault.empty())
            _changed.notify_all();
    }
    if (link)
        return join(link);
    std::array<pollfd, 2> fds{pollfd{_wake.get(), POLLIN, 0},
                              pollfd{fault.empty() ? _finder.fd() : -1, POLLIN, 0}};
    const Deadline until = fault.empty() ? _finder.patience() : Deadline(FaultTime);
    ::poll(fds.data(), fds.size(), until.milliseconds());
}

void QueueEnd::join(const Link& link)
{
    const std::lock_guard sending(_sendMutex);
    {
        const std::lock_guard lock(_mutex);
        link->peer = ++_generation;
        _link = link;
        _hungUp = false;
        _sending = link;
        _changed.notify_all();
    }
    for (wire::Parcel& parcel : _outbox)
        link->writer.enqueue(std::move(parcel));
    _outbox.clear();
}

void QueueEnd::leave(const Link& link)
{
    {
        const std::lock_guard sending(_sendMutex);
        if (_sending == link) {
            std::deque<wire::Parcel> unsent = link->writer.takeUnsent();
            std::erase_if(unsent, [](const wire::Parcel& parcel) { return parcel.audience != 0; });
            _outbox.insert(_outbox.begin(), std::make_move_iterator(unsent.begin()),
                           std::make_move_iterator(unsent.end()));
            _sending = nullptr;
        }
        const std::lock_guard lock(_mutex);
        if (_link == link) {
            _link = nullptr;
            _hungUp = false;
        }
        _changed.notify_all();
    }
    wakeThread();
}

bool QueueEnd::flush(const Link& link, bool& stalled)
{
    const std::lock_guard sending(_sendMutex);
    stalled = false;
    if (_sending != link)
        return true;
    try {
        const bool done = link->writer.flush();
        stalled = !done && link->writer.stalled();
        return done;
    } catch (const MPeerGoneException&) {
        return true;  // the socket shows its end
    }
}

void QueueEnd::serve(const Link& link)
{
    bool stalled = false;
    const bool done = flush(link, stalled);
    bool hungUp = false;
    {
        const std::lock_guard lock(_mutex);
        hungUp = _hungUp && _reading;  // the reading thread reaches the end by itself
    }
    const short events = static_cast<short>(POLLRDHUP | (done || stalled ? 0 : POLLOUT));
    std::array<pollfd, 2> fds{pollfd{_wake.get(), POLLIN, 0},
                              pollfd{hungUp ? -1 : link->socket.get(), events, 0}};
    ::poll(fds.data(), fds.size(), stalled ? Deadline(PollTime).milliseconds() : -1);
    if (fds[1].revents & (POLLHUP | POLLRDHUP | POLLERR | POLLNVAL))
        readToTheEnd(link);
}

void QueueEnd::readToTheEnd(const Link& link)
{
    {
        const std::lock_guard lock(_mutex);
        _hungUp = true;
        if (_link != link || _reading)
            return;
        _reading = true;
    }
    std::deque<Message> arrived;
    // Nothing more will come: the socket holds all that is left.
    while (!collect(link, arrived, std::size_t(-1)))
        continue;
    store(link, arrived);
    leave(link);
}

}  // namespace morvend::imglib
