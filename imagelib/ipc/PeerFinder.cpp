// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Listening, connecting and the exchange of hellos.
#include "imagelib/ipc/PeerFinder.h"

#include "imagelib/image/MException.h"

#include <cstdio>

namespace morvend::imglib {

using namespace std::chrono_literals;

namespace {

/// A silent process of the same user that has connected holds up others no longer than this.
constexpr auto HelloTime = 2s;
/// Between two tries when a name is neither free nor answers, a short moment while its holder
/// starts or ends.
constexpr auto RetryTime = 2ms;
/// Before the next try with one that broke the protocol.
constexpr auto FaultTime = 100ms;

}  // namespace

void complain(const std::string& queue, const std::string& what)
{
    std::fprintf(stderr, "Queue \"%s\": %s\n", queue.c_str(), what.c_str());
}

PeerFinder::PeerFinder(const std::string& name, std::shared_ptr<SegmentPool> pool)
    : _name(name)
    , _pool(std::move(pool))
    , _address(name)
    , _candidateUntil(0ms)
{}

std::shared_ptr<QueueLink> PeerFinder::seek()
{
    _retry = 0ms;
    for (;;) {
        const Step step = _candidate ? meet() : look();
        if (step == Step::Found)
            return std::exchange(_candidate, nullptr);
        if (step == Step::Wait)
            return nullptr;
    }
}

/// Waits for the hello of the candidate.
PeerFinder::Step PeerFinder::meet()
{
    try {
        _candidate->writer.flush();
        if (_candidate->reader.greet())
            return Step::Found;
        if (!_candidateUntil.passed())
            return Step::Wait;
        complain(_name, "a peer is turned away: no hello came");
    } catch (const MPeerGoneException&) {
        // The usual end of a peer that waited in the backlog, or of one that was killed.
    } catch (const MException& exception) {
        complain(_name, std::string("a peer is turned away: ") + exception.what());
        _retry = FaultTime;
    }
    _candidate = nullptr;
    return _retry > 0ms ? Step::Wait : Step::Again;
}

/// Looks for a peer.
PeerFinder::Step PeerFinder::look()
{
    if (!_listener)
        _listener = _address.listen();
    const bool listening = bool(_listener);
    UniqueFd socket = listening ? QueueAddress::accept(_listener) : _address.connect();
    if (!socket) {
        _retry = listening ? 0ms : RetryTime;
        return Step::Wait;
    }
    _candidate = std::make_shared<QueueLink>(std::move(socket), _pool, _name);
    // The connecting side waits without end: the listener may be busy with another.
    _candidateUntil = Deadline(listening ? HelloTime : -1ms);
    return Step::Again;
}

int PeerFinder::fd() const
{
    if (_retry > 0ms)
        return -1;
    return _candidate ? _candidate->socket.get() : _listener.get();
}

Deadline PeerFinder::patience() const
{
    if (_retry > 0ms)
        return Deadline(_retry);
    return _candidate ? _candidateUntil : Deadline(-1ms);
}

void PeerFinder::close()
{
    _candidate = nullptr;
    _listener.reset();
}

}  // namespace morvend::imglib
