// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The search for the other end of a queue.
#pragma once

#include "imagelib/ipc/FrameReader.h"
#include "imagelib/ipc/FrameWriter.h"
#include "imagelib/ipc/QueueAddress.h"
#include "imagelib/ipc/SocketWait.h"

#include <memory>
#include <string>

namespace morvend::imglib {

/// A connection of a queue.
struct QueueLink {
    QueueLink(UniqueFd socket_, std::shared_ptr<SegmentPool> pool, const std::string& name)
        : socket(std::move(socket_))
        , writer(socket.get(), std::move(pool), name)
        , reader(socket.get(), name)
    {}

    const UniqueFd socket;
    FrameWriter writer;
    FrameReader reader;
    std::uint64_t peer = 0;  // its number, given once it counts as connected
};

/// Listens under the name, or connects to the listener, until a peer of the same user has said
/// hello. A third process waits in the listener's backlog.
/// Thread: one at a time. Nothing here blocks.
class PeerFinder {
public:
    PeerFinder(const std::string& name, std::shared_ptr<SegmentPool> pool);

    /// Continues the search. Returns a connection once there is one; null: wait and call again.
    /// @throws QueueNameTaken, MRuntimeException when the system refuses a socket
    std::shared_ptr<QueueLink> seek();
    /// What to wait for until then: readable, or `patience()` over. -1: for the time alone.
    int fd() const;
    Deadline patience() const;

    /// True if a candidate is connected that has not said hello yet.
    bool meeting() const { return bool(_candidate); }

    /// Gives the name up.
    void close();

private:
    enum class Step { Again, Wait, Found };
    Step meet();
    Step look();

    const std::string _name;
    const std::shared_ptr<SegmentPool> _pool;
    const QueueAddress _address;
    UniqueFd _listener;
    std::shared_ptr<QueueLink> _candidate;  // connected, has not said hello yet
    Deadline _candidateUntil;
    std::chrono::milliseconds _retry{0};  // to wait before the next try
};

/// A line on standard error about a fault that can't be reported to a caller.
void complain(const std::string& queue, const std::string& what);

}  // namespace morvend::imglib
