// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Segments of shared memory for images that cross to another process, reused when all have released
// them.
#pragma once

#include "imagelib/image/PixelBuffer.h"
#include "imagelib/ipc/LeasePage.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace morvend::imglib {

/// A sealed memory file that holds one image at a time, from its first byte on. Thread: any.
class Segment {
public:
    /// @throws MRuntimeException when there is no shared memory
    explicit Segment(std::size_t capacity);

    const UniqueFd& file() const { return _file; }
    std::byte* data() const { return _memory.data(); }
    std::size_t capacity() const { return _memory.size(); }

    /// A message on the connection of `book` names this segment by `number`.
    void lend(const std::shared_ptr<LeaseBook>& book, std::uint32_t number);

    enum class Leases { Back, Out, Lost };
    /// Whether all are back. Lost: a connection ended before they were. The peer may be dead, or
    /// may still show the image, so that the memory must not be written again.
    Leases leases();

    /// Returns the memory to the system if no peer shows the image, even while one has the
    /// segment mapped. Only for a segment without an image, which is not used again.
    void discard();

private:
    struct Lease {
        std::shared_ptr<LeaseBook> book;
        std::uint32_t number = 0;
    };
    const UniqueFd _file;
    const Mapping _memory;
    std::mutex _mutex;
    std::vector<Lease> _leases;
};

/// Owner of sealed memory files that hold one image each.
///
/// An image made in a segment is sent without copying a byte:
///     const image::PixelSource::Scope scope(*SegmentPool::process());
///     MImage image = series[index];   // decoded straight into shared memory
///     queue.send(image);
/// A segment is reused when its last image here is gone and every peer that it was sent to
/// has given it back. Thread: any.
class SegmentPool : public image::PixelSource, public std::enable_shared_from_this<SegmentPool> {
public:
    struct Limits {
        std::size_t segments = 384;                      // each holds a file descriptor
        std::size_t bytes = std::size_t(3) << 30;        // of all segments
        std::size_t idleBytes = std::size_t(512) << 20;  // of those that wait for reuse
    };
    /// Smaller images use ordinary memory and go through the socket.
    static constexpr std::size_t SmallestBytes = std::size_t(256) << 10;

    /// The pool that the queues of this process use.
    static const std::shared_ptr<SegmentPool>& process();
    static std::shared_ptr<SegmentPool> create(const Limits& limits);
    ~SegmentPool() override;

    /// Memory of an image in a segment; null below SmallestBytes, beyond the limits, or when the
    /// system has none to give.
    image::PixelBufferPtr allocate(std::size_t bytes) override;

    /// The segment whose memory a buffer of this pool shows, null for other buffers.
    std::shared_ptr<Segment> find(const image::PixelBuffer& buffer) const;

    /// Frees the memory of the segments that wait for reuse.
    void trim();
    struct Usage {
        std::size_t segments = 0;
        std::size_t bytes = 0;
        std::size_t idle = 0;  // segments that could be taken at once
    };
    Usage usage() const;

private:
    struct State;
    explicit SegmentPool(const Limits& limits);
    const std::shared_ptr<State> _state;
};

}  // namespace morvend::imglib
