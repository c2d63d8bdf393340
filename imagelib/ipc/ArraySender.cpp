// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The choice of a place for each array.
#include "imagelib/ipc/ArraySender.h"

#include <algorithm>
#include <cstring>

#include <fcntl.h>

namespace morvend::imglib {

using wire::ArrayPlace;
using wire::Place;

namespace {

std::size_t bytesOf(const image::MBasicImage<>& pixels)
{
    return pixels.size() * (pixels.typeBits() / 8);
}

}  // namespace

ArraySender::ArraySender(std::shared_ptr<SegmentPool> pool)
    : _pool(std::move(pool))
    , _book(std::make_shared<LeaseBook>())
{}

ArraySender::~ArraySender() { _book->close(); }

ArrayPlace ArraySender::place(const wire::Parcel::Array& array, std::size_t bulk,
                              Descriptors& descriptors)
{
    const std::uint64_t identity = array.pixels.buffer()->identity();
    if (array.lasting) {
        const auto kept = std::ranges::find(_kept, identity);
        if (kept != _kept.end()) {
            ArrayPlace place;
            place.place = Place::Kept;
            place.number = static_cast<std::uint32_t>(kept - _kept.begin());
            return place;
        }
    }
    const std::size_t bytes = bytesOf(array.pixels);
    ArrayPlace place;
    if (bytes < SegmentPool::SmallestBytes) {
        place.place = Place::Inline;
        place.offset = bulk;
    } else {
        image::PixelBufferPtr buffer = array.pixels.buffer();
        std::shared_ptr<Segment> segment = _pool->find(*buffer);
        if (!segment && (buffer = _pool->allocate(bytes))) {
            std::memcpy(buffer->data(), array.pixels.cdata(), bytes);
            segment = _pool->find(*buffer);
        }
        if (segment) {
            buffer->freeze();  // the peer reads it from now on
            place = inSegment(segment, descriptors);
        }
        if (place.place == Place::Nowhere)
            place = inOwnFile(array.pixels, bytes, descriptors);
    }
    if (array.lasting) {
        place.keep = _nextKept;
        _kept[_nextKept] = identity;
        _nextKept = static_cast<std::uint8_t>((_nextKept + 1) % wire::MostKept);
    }
    return place;
}

/// Names a segment by the number it has on this connection, or gets now.
ArrayPlace ArraySender::inSegment(const std::shared_ptr<Segment>& segment, Descriptors& descriptors)
{
    auto known = std::ranges::find_if(_segments, [&](const Known& each) {
        return each.address == segment.get() && !each.segment.expired();
    });
    if (known == _segments.end()) {
        known = std::ranges::find_if(_segments, [](const Known& each) { return !each.named; });
        if (known == _segments.end()) {
            if (_segments.size() == wire::MostSegments)
                return {};
            known = _segments.insert(_segments.end(), Known());
        }
        known->address = segment.get();
        known->segment = segment;
    }
    ArrayPlace place;
    place.place = Place::Segment;
    place.number = static_cast<std::uint32_t>(known - _segments.begin());
    if (!known->named) {
        place.descriptor = static_cast<std::int32_t>(descriptors.all.size());
        descriptors.all.push_back(segment->file().get());
        known->named = true;
    }
    segment->lend(_book, place.number);
    return place;
}

/// Copies an array to a file that only the peer will hold.
ArrayPlace ArraySender::inOwnFile(const image::MBasicImage<>& pixels, std::size_t bytes,
                                  Descriptors& descriptors)
{
    const Segment file(bytes + wire::Padding);
    std::memcpy(file.data(), pixels.cdata(), bytes);
    ArrayPlace place;
    place.place = Place::OwnFile;
    place.descriptor = static_cast<std::int32_t>(descriptors.all.size());
    UniqueFd own(::fcntl(file.file().get(), F_DUPFD_CLOEXEC, 0));
    descriptors.all.push_back(own.get());
    descriptors.owned.push_back(std::move(own));
    return place;
}

void ArraySender::undo(const ArrayPlace& place)
{
    if (place.place != Place::Segment)
        return;
    _book->unlend(place.number);
    if (place.descriptor >= 0)
        _segments[place.number].named = false;
}

std::vector<std::uint32_t> ArraySender::takeForgotten()
{
    std::vector<std::uint32_t> numbers;
    for (std::size_t i = 0; i < _segments.size(); ++i) {
        if (_segments[i].named && _segments[i].segment.expired()) {
            numbers.push_back(static_cast<std::uint32_t>(i));
            _segments[i].named = false;
        }
    }
    return numbers;
}

}  // namespace morvend::imglib
