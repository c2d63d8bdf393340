// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The small page on which a receiver gives back the segments that it was lent.
#pragma once

#include "imagelib/ipc/SharedMemory.h"
#include "imagelib/ipc/WireFormat.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace morvend::imglib {

/// Layout of the page, little-endian: u32 "TVLP", u32 version, u64 frames that the receiver has
/// taken from the socket, zeros up to byte 64, then for each segment number a u32 that the receiver
/// counts up whenever an image of a message from that segment has gone. The receiver alone writes.
inline constexpr std::size_t LeasePageBytes = 8192;

/// The sender's side of one connection: what was lent, and what has come back.
/// The page may hold anything: a peer that lies about it harms nobody but itself.
class LeaseBook {
public:
    /// @throws MRuntimeException when there is no shared memory
    LeaseBook();

    const UniqueFd& file() const { return _file; }
    /// One more message names the segment.
    void lend(std::uint32_t number) { _given[number].fetch_add(1, std::memory_order_relaxed); }
    /// That message was not sent after all.
    void unlend(std::uint32_t number) { _given[number].fetch_sub(1, std::memory_order_relaxed); }
    /// Has every message been answered that named the segment?
    bool isBack(std::uint32_t number) const;
    /// Frames that the receiver has taken.
    std::uint64_t taken() const;

    /// The connection has ended: what isn't back now will never be.
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
    /// Maps the page that a peer has sent. @throws MRuntimeException when it is none
    explicit LeaseReturns(const UniqueFd& file);

    void giveBack(std::uint32_t number);
    void setTaken(std::uint64_t frames);

private:
    const Mapping _page;
};

}  // namespace morvend::imglib
