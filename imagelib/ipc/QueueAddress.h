// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How two processes of one user find each other by a name.
#pragma once

#include "imagelib/image/MException.h"
#include "imagelib/ipc/UniqueFd.h"

#include <string>

namespace morvend::imglib {

/// The socket address of a queue name, in the abstract namespace of Unix sockets: it exists as long
/// as a process holds it, however that process ends. Bytes without the leading zero.
std::string queueAddress(const std::string& name, unsigned userId);

/// Another user holds a name.
class QueueNameTaken : public MRuntimeException {
public:
    using MRuntimeException::MRuntimeException;
};

/// A meeting place of this user. All sockets are closed on exec and never block.
class QueueAddress {
public:
    explicit QueueAddress(const std::string& name);

    /// A listening socket, or none if the address is taken.
    /// @throws MRuntimeException when the system has no socket to give
    UniqueFd listen() const;
    /// A socket connected to the listener, which may be busy with another peer; none if nobody
    /// listens. @throws MRuntimeException as above, QueueNameTaken when another user listens there
    UniqueFd connect() const;
    /// The next connection, if its process is of the same user; others are refused.
    /// @throws MRuntimeException as above
    static UniqueFd accept(const UniqueFd& listener);

private:
    const std::string _name;
    const std::string _address;
};

}  // namespace morvend::imglib
