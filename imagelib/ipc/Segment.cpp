// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bookkeeping of one segment.
#include "imagelib/ipc/Segment.h"

#include <algorithm>

#include <fcntl.h>

namespace morvend::imglib {

Segment::Segment(std::size_t capacity)
    : _file(makeMemoryFile("tarvik-image", capacity))
    , _memory(_file, capacity, Mapping::Access::Write)
{}

void Segment::lend(const std::shared_ptr<LeaseBook>& book, std::uint32_t number)
{
    book->lend(number);
    const std::lock_guard lock(_mutex);
    const bool known = std::ranges::any_of(
        _leases, [&](const Lease& lease) { return lease.book == book && lease.number == number; });
    if (!known)
        _leases.push_back({book, number});
}

Segment::Leases Segment::leases()
{
    const std::lock_guard lock(_mutex);
    auto result = Leases::Back;
    std::erase_if(_leases, [&](const Lease& lease) {
        // In this order: what comes back after the look at it is lost, never taken for back.
        const bool closed = lease.book->closed();
        const bool back = lease.book->isBack(lease.number);
        if (!back)
            result = closed ? Leases::Lost : std::max(result, Leases::Out);
        return closed && back;
    });
    return result;
}

void Segment::discard()
{
    // A peer learns with the next image only that the segment is gone; a hole frees the memory now.
    // Without one, on a system that can't, it is freed then.
    if (leases() == Leases::Back)
        ::fallocate(_file.get(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0,
                    static_cast<off_t>(capacity()));
}

}  // namespace morvend::imglib
