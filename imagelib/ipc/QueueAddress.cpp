// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Abstract Unix sockets and the credentials of their peers.
#include "imagelib/ipc/QueueAddress.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <system_error>

#include <sys/socket.h>
#include <sys/un.h>

namespace morvend::imglib {

namespace {

constexpr std::size_t LongestAddress = sizeof(sockaddr_un::sun_path) - 1;

[[noreturn]] void fail(const std::string& what)
{
    throw MRuntimeException("Queue: " + what + ": " + std::generic_category().message(errno));
}

struct SocketAddress {
    sockaddr_un value{};
    socklen_t size = 0;

    explicit SocketAddress(const std::string& address)
    {
        value.sun_family = AF_UNIX;
        std::ranges::copy(address, value.sun_path + 1);
        size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + address.size());
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&value); }
};

UniqueFd makeSocket()
{
    UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket)
        fail("no socket");
    return socket;
}

/// The user at the other end; -1 if unknown.
std::int64_t peerUser(const UniqueFd& socket)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return -1;
    return credentials.uid;
}

}  // namespace

std::string queueAddress(const std::string& name, unsigned userId)
{
    const std::string folder = "tarvik/" + std::to_string(userId) + "/";
    if (folder.size() + name.size() <= LongestAddress)
        return folder + name;
    // FNV-1a; names that collide are told apart by their hellos.
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char each : name)
        hash = (hash ^ static_cast<unsigned char>(each)) * 0x100000001b3;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return folder + name.substr(0, 48) + "~" + digits;
}

QueueAddress::QueueAddress(const std::string& name)
    : _name(name)
    , _address(queueAddress(name, ::geteuid()))
{}

UniqueFd QueueAddress::listen() const
{
    UniqueFd socket = makeSocket();
    const SocketAddress address(_address);
    if (::bind(socket.get(), address.get(), address.size) != 0) {
        if (errno == EADDRINUSE)
            return {};
        fail("the name \"" + _name + "\" can't be taken");
    }
    if (::listen(socket.get(), 64) != 0)
        fail("the name \"" + _name + "\" can't be taken");
    return socket;
}

UniqueFd QueueAddress::connect() const
{
    UniqueFd socket = makeSocket();
    const SocketAddress address(_address);
    if (::connect(socket.get(), address.get(), address.size) != 0) {
        if (errno == ECONNREFUSED || errno == EAGAIN || errno == EINTR)
            return {};
        fail("the name \"" + _name + "\" can't be reached");
    }
    const std::int64_t user = peerUser(socket);
    if (user != std::int64_t(::geteuid()))
        throw QueueNameTaken("Queue: the name \"" + _name + "\" is held by another user (" +
                             std::to_string(user) + ")");
    return socket;
}

UniqueFd QueueAddress::accept(const UniqueFd& listener)
{
    UniqueFd socket(::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR &&
        errno != ECONNABORTED)
        fail("a peer can't be let in");
    if (socket && peerUser(socket) != std::int64_t(::geteuid()))
        socket.reset();
    return socket;
}

}  // namespace morvend::imglib
