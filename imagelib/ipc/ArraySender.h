// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Decides where the pixels of outgoing images are put: inline, in segments, in files of their own,
// or by reference to what the peer has kept.
#pragma once

#include "imagelib/ipc/LeasePage.h"
#include "imagelib/ipc/SegmentPool.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace morvend::imglib {

/// The arrays of one connection and direction, at the sender. Thread: one at a time.
class ArraySender {
public:
    explicit ArraySender(std::shared_ptr<SegmentPool> pool);
    /// Segments that the peer holds are not used again; see Segment::Leases::Lost.
    ~ArraySender();
    ArraySender(const ArraySender&) = delete;
    ArraySender& operator=(const ArraySender&) = delete;

    const LeaseBook& book() const { return *_book; }

    /// Descriptors of one frame; those in `owned` are closed when it has been written.
    struct Descriptors {
        std::vector<int> all;
        std::vector<UniqueFd> owned;
    };
    /// Puts an array of the next frame; `bulk` is the size of the frame's inline data so far.
    /// @throws MRuntimeException when there is no memory that both sides could use
    wire::ArrayPlace place(const wire::Parcel::Array& array, std::size_t bulk,
                           Descriptors& descriptors);

    /// Takes back a place: its frame is not sent.
    void undo(const wire::ArrayPlace& place);

    /// Numbers of segments that no longer exist; the peer must learn them before the next image.
    std::vector<std::uint32_t> takeForgotten();

private:
    wire::ArrayPlace inSegment(const std::shared_ptr<Segment>& segment, Descriptors& descriptors);
    wire::ArrayPlace inOwnFile(const image::MBasicImage<>& pixels, std::size_t bytes,
                               Descriptors& descriptors);

    struct Known {
        const Segment* address = nullptr;
        std::weak_ptr<Segment> segment;
        bool named = false;  // the peer has it under this number
    };
    const std::shared_ptr<SegmentPool> _pool;
    const std::shared_ptr<LeaseBook> _book;
    std::vector<Known> _segments;                       // by number
    std::array<std::uint64_t, wire::MostKept> _kept{};  // identities, by number
    std::uint8_t _nextKept = 0;
};

}  // namespace morvend::imglib
