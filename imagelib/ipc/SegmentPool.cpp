// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bookkeeping of one segment; choosing, making and dropping segments.
#include "imagelib/ipc/SegmentPool.h"

#include <algorithm>
#include <map>

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
        // In this order: what is returned after the check counts as lost, never as back.
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
    // A peer learns only with the next image that the segment is gone; a hole frees the memory now.
    // On a system without holes it is freed then.
    if (leases() == Leases::Back)
        ::fallocate(_file.get(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0,
                    static_cast<off_t>(capacity()));
}

struct SegmentPool::State {
    struct Entry {
        std::shared_ptr<Segment> segment;
        bool inUse = false;  // it holds an image of this process
    };

    explicit State(const Limits& limits_)
        : limits(limits_)
    {}

    std::shared_ptr<Segment> take(std::size_t bytes);
    bool reserve(std::size_t capacity, std::vector<std::shared_ptr<Segment>>& dropped);
    void release(const Segment& segment);
    void dropIdle(std::size_t keptBytes, std::vector<std::shared_ptr<Segment>>& dropped);

    const Limits limits;
    mutable std::mutex mutex;
    std::vector<Entry> entries;  // the one used last at the end
    std::map<const std::byte*, std::shared_ptr<Segment>> byAddress;
    std::size_t bytes = 0;     // of all entries, and of those being made
    std::size_t segments = 0;  // likewise

private:
    void drop(std::size_t index, std::vector<std::shared_ptr<Segment>>& dropped);
};

namespace {

std::size_t capacityFor(std::size_t bytes)
{
    // Images of nearly the same size share segments.
    const std::size_t unit = std::size_t(bytes < (std::size_t(4) << 20) ? 64 : 1024) << 10;
    return (bytes + wire::Padding + unit - 1) / unit * unit;
}

}  // namespace

/// Takes an entry out; its memory is given back when the caller drops the entry, outside the lock.
void SegmentPool::State::drop(std::size_t index, std::vector<std::shared_ptr<Segment>>& dropped)
{
    std::shared_ptr<Segment>& segment = entries[index].segment;
    bytes -= segment->capacity();
    --segments;
    byAddress.erase(segment->data());
    dropped.push_back(std::move(segment));
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(index));
}

/// A segment of fitting size that nobody uses, if there is one.
std::shared_ptr<Segment> SegmentPool::State::take(std::size_t size)
{
    const std::size_t capacity = capacityFor(size);
    std::vector<std::shared_ptr<Segment>> dropped;
    const std::lock_guard lock(mutex);
    for (std::size_t i = entries.size(); i-- > 0;) {
        Entry& entry = entries[i];
        if (entry.inUse)
            continue;
        const auto leases = entry.segment->leases();
        if (leases == Segment::Leases::Lost) {
            drop(i, dropped);
            continue;
        }
        const std::size_t has = entry.segment->capacity();
        if (leases == Segment::Leases::Out || has < capacity || has > capacity + capacity / 2)
            continue;
        entry.inUse = true;
        std::rotate(entries.begin() + static_cast<std::ptrdiff_t>(i),
                    entries.begin() + static_cast<std::ptrdiff_t>(i) + 1, entries.end());
        return entries.back().segment;
    }
    return nullptr;
}

/// Drops segments that wait for reuse, the oldest first, until no more than `keptBytes` do.
void SegmentPool::State::dropIdle(std::size_t keptBytes,
                                  std::vector<std::shared_ptr<Segment>>& dropped)
{
    const auto waits = [](const Entry& entry) {
        return !entry.inUse && entry.segment->leases() != Segment::Leases::Out;
    };
    std::size_t idle = 0;
    for (const Entry& entry : entries)
        idle += waits(entry) ? entry.segment->capacity() : 0;
    for (std::size_t i = 0; i < entries.size() && idle > keptBytes;) {
        if (!waits(entries[i])) {
            ++i;
        } else {
            idle -= std::min(idle, entries[i].segment->capacity());
            drop(i, dropped);
        }
    }
}

/// Counts a segment that is about to be made, if the limits allow for it.
bool SegmentPool::State::reserve(std::size_t capacity,
                                 std::vector<std::shared_ptr<Segment>>& dropped)
{
    const std::lock_guard lock(mutex);
    const auto fits = [&] {
        return segments < limits.segments && capacity <= limits.bytes &&
               bytes <= limits.bytes - capacity;
    };
    if (!fits())
        dropIdle(0, dropped);
    if (!fits())
        return false;
    ++segments;
    bytes += capacity;
    return true;
}

/// The last image in the segment has gone.
void SegmentPool::State::release(const Segment& segment)
{
    std::vector<std::shared_ptr<Segment>> dropped;
    const std::lock_guard lock(mutex);
    for (Entry& entry : entries)
        if (entry.segment.get() == &segment)
            entry.inUse = false;
    dropIdle(limits.idleBytes, dropped);
}

SegmentPool::SegmentPool(const Limits& limits)
    : _state(std::make_shared<State>(limits))
{}

SegmentPool::~SegmentPool() = default;

std::shared_ptr<SegmentPool> SegmentPool::create(const Limits& limits)
{
    return std::shared_ptr<SegmentPool>(new SegmentPool(limits));
}

const std::shared_ptr<SegmentPool>& SegmentPool::process()
{
    // Never destroyed: images in static objects may outlive any order of destruction.
    static const auto& pool = *new std::shared_ptr<SegmentPool>(create(Limits()));
    return pool;
}

image::PixelBufferPtr SegmentPool::allocate(std::size_t bytes)
{
    if (bytes < SmallestBytes || bytes > _state->limits.bytes)
        return nullptr;
    std::shared_ptr<Segment> segment = _state->take(bytes);
    std::vector<std::shared_ptr<Segment>> dropped;
    if (!segment) {
        const std::size_t capacity = capacityFor(bytes);
        if (!_state->reserve(capacity, dropped))
            return nullptr;
        dropped.clear();
        try {
            segment = std::make_shared<Segment>(capacity);
        } catch (const MException&) {
            const std::lock_guard lock(_state->mutex);
            --_state->segments;
            _state->bytes -= capacity;
            return nullptr;  // ordinary memory, copied when it is sent, will do
        }
        const std::lock_guard lock(_state->mutex);
        _state->entries.push_back({segment, true});
        _state->byAddress[segment->data()] = segment;
    }
    return image::PixelBuffer::adopt(segment->data(), bytes,
                                     [state = _state, segment] { state->release(*segment); });
}

std::shared_ptr<Segment> SegmentPool::find(const image::PixelBuffer& buffer) const
{
    const std::lock_guard lock(_state->mutex);
    const auto found = _state->byAddress.find(buffer.cdata());
    return found == _state->byAddress.end() ? nullptr : found->second;
}

void SegmentPool::trim()
{
    std::vector<std::shared_ptr<Segment>> dropped;
    {
        const std::lock_guard lock(_state->mutex);
        _state->dropIdle(0, dropped);
    }
    for (const auto& segment : dropped)
        segment->discard();
}

SegmentPool::Usage SegmentPool::usage() const
{
    const std::lock_guard lock(_state->mutex);
    Usage usage;
    usage.segments = _state->segments;
    usage.bytes = _state->bytes;
    for (const auto& entry : _state->entries)
        usage.idle += !entry.inUse && entry.segment->leases() == Segment::Leases::Back ? 1U : 0U;
    return usage;
}

}  // namespace morvend::imglib
