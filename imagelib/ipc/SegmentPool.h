// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Segments of shared memory for images that cross to another process, reused when all have let go.
#pragma once

#include "imagelib/image/PixelBuffer.h"

#include <cstddef>
#include <memory>

namespace morvend::imglib {

class Segment;

/// Owner of sealed memory files that hold one image each.
///
/// An image made in a segment is sent without copying a byte:
///     const image::PixelSource::Scope scope(*SegmentPool::process());
///     MImage image = series[index];   // decoded straight into shared memory
///     queue.send(image);
/// A segment is taken again when its last image here is gone and every peer that it was sent to
/// has given it back. Thread: any.
class SegmentPool : public image::PixelSource, public std::enable_shared_from_this<SegmentPool> {
public:
    struct Limits {
        std::size_t segments = 384;                      // each holds a file descriptor
        std::size_t bytes = std::size_t(3) << 30;        // of all segments
        std::size_t idleBytes = std::size_t(512) << 20;  // of those that wait for reuse
    };
    /// Smaller images go through the socket and are left to ordinary memory.
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

    /// Gives back the memory of the segments that wait for reuse, at once.
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
