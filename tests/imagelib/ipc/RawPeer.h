// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A hand-driven end of a connection that may send anything.
#pragma once

#include "imagelib/ipc/LeasePage.h"
#include "imagelib/ipc/SocketWait.h"
#include "imagelib/ipc/WireFormat.h"

#include <array>
#include <chrono>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>

namespace tarvik::tests {

using namespace morvend::imglib;

/// Descriptors for one statement: they are closed when the expression that made it has ended.
class Files {
public:
    int memory(std::size_t bytes, bool sealed, bool holes = false)
    {
        const int fd = keep(::memfd_create("hostile", MFD_CLOEXEC | MFD_ALLOW_SEALING));
        if (::ftruncate(fd, off_t(bytes)) != 0 ||
            (!holes && ::posix_fallocate(fd, 0, off_t(bytes)) != 0))
            std::abort();
        if (sealed)
            ::fcntl(fd, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW);
        return fd;
    }
    int pipe()
    {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            std::abort();
        keep(ends[1]);
        return keep(ends[0]);
    }
    int folder() { return keep(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC)); }

private:
    int keep(int fd)
    {
        _files.emplace_back(fd);
        return fd;
    }
    std::vector<UniqueFd> _files;
};

class RawPeer {
public:
    explicit RawPeer(UniqueFd socket)
        : _socket(std::move(socket))
    {}

    int fd() const { return _socket.get(); }

    /// Bytes, with descriptors beside the first one.
    void raw(std::string_view bytes, const std::vector<int>& fds = {})
    {
        iovec piece{const_cast<char*>(bytes.data()), bytes.size()};
        msghdr message{};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        alignas(cmsghdr) std::array<char, 256> control{};
        if (!fds.empty()) {
            message.msg_control = control.data();
            message.msg_controllen = CMSG_SPACE(sizeof(int) * fds.size());
            cmsghdr* header = CMSG_FIRSTHDR(&message);
            header->cmsg_level = SOL_SOCKET;
            header->cmsg_type = SCM_RIGHTS;
            header->cmsg_len = CMSG_LEN(sizeof(int) * fds.size());
            std::memcpy(CMSG_DATA(header), fds.data(), sizeof(int) * fds.size());
        }
        ::sendmsg(_socket.get(), &message, MSG_NOSIGNAL);
    }

    void sendHead(wire::Kind kind, std::uint32_t meta, std::uint64_t bulk,
                  std::uint32_t descriptors = 0, const std::vector<int>& fds = {})
    {
        wire::Head sent;
        sent.kind = kind;
        sent.metaBytes = meta;
        sent.bulkBytes = bulk;
        sent.descriptors = descriptors;
        sent.number = number++;
        auto bytes = wire::encodeHead(sent);
        for (const auto& [offset, value] : head)
            bytes.at(offset) = std::byte(value);
        raw({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, fds);
    }

    void send(wire::Kind kind, const std::vector<std::byte>& meta, std::string_view bulk = {},
              const std::vector<int>& fds = {})
    {
        sendHead(kind, std::uint32_t(meta.size()), bulk.size(), std::uint32_t(fds.size()), fds);
        raw({reinterpret_cast<const char*>(meta.data()), meta.size()});
        if (!bulk.empty())
            raw(bulk);
    }

    void hello(const std::string& asked = {}, const std::vector<int>& leases = {})
    {
        wire::Hello words;
        words.name = asked.empty() ? name : asked;
        send(wire::Kind::Hello, wire::packHello(words).meta, {}, leases);
    }
    void helloWithLeases()
    {
        const LeaseBook book;
        hello({}, {book.file().get()});
    }

    /// The lease page that comes with the hello of the other side.
    UniqueFd leasePage()
    {
        std::array<char, 4096> bytes;
        iovec piece{bytes.data(), bytes.size()};
        alignas(cmsghdr) std::array<char, 256> control{};
        msghdr message{};
        message.msg_iov = &piece;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        ::recvmsg(_socket.get(), &message, MSG_CMSG_CLOEXEC);
        int received = -1;
        std::memcpy(&received, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof received);
        return UniqueFd(received);
    }

    /// Has the other side hung up, after whatever it sent?
    bool ended()
    {
        const Deadline deadline(std::chrono::seconds(120));
        std::array<char, 4096> bytes;
        while (waitFor(_socket.get(), POLLIN, deadline))
            if (::recv(_socket.get(), bytes.data(), bytes.size(), MSG_DONTWAIT) <= 0)
                return true;
        return false;
    }

    std::string name;                 // said in the hello
    std::uint64_t number = 0;         // of the next frame
    std::map<std::size_t, int> head;  // bytes that are changed in all heads to come

private:
    UniqueFd _socket;
};

}  // namespace tarvik::tests
