// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The small page on which a receiver returns the segments lent to it.
#pragma once

#include "imagelib/ipc/SharedMemory.h"
#include "imagelib/ipc/WireFormat.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace morvend::imglib {

/// Layout of the page, little-endian: u32 "TVLP", u32 version, u64 frames that the receiver has
/// taken from the socket, zeros up to byte 64, then for each segment number a u32 that the receiver
/// increments when an image of a message from that segment is released. The receiver alone writes.
inline constexpr std::size_t LeasePageBytes = 8192;

/// The sender's side of one connection: what was lent, and what has come back.
/// The page may hold anything: a peer that falsifies it harms only itself.
class LeaseBook {
public:
    /// @throws MRuntimeException when there is no shared memory
    LeaseBook();

    const UniqueFd& file() const { return _file; }
    /// One more message names the segment.
    void lend(std::uint32_t number) { _given[number].fetch_add(1, std::memory_order_relaxed); }
    /// Takes that back: the message was not sent.
    void unlend(std::uint32_t number) { _given[number].fetch_sub(1, std::memory_order_relaxed); }
    /// True if every message that named the segment has been answered.
    bool isBack(std::uint32_t number) const;
    /// Frames that the receiver has taken.
    std::uint64_t taken() const;

    /// The connection has ended: what hasn't been returned now never will be.
    void close() { _closed.store(true, std::memory_order_release); }
    bool closed() const { return _closed.load(std::memory_order_acquire); }

private:
    const UniqueFd _file;
    const Mapping _page;
    std::array<std::atomic<std::uint32_t>, wire::MostSegments> _given{};
    std::atomic<bool> _closed{false};
};

/// The receiver's side. Thread: any.
class LeaseReturns {
public:
    /// Maps the page that a peer has sent. @throws MRuntimeException if it isn't a lease page
    explicit LeaseReturns(const UniqueFd& file);

    void giveBack(std::uint32_t number);
    void setTaken(std::uint64_t frames);

private:
    const Mapping _page;
};

}  // namespace morvend::imglib
