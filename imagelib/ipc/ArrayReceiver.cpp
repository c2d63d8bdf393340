// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Mapping what a peer sends, after a look at it.
#include "imagelib/ipc/ArrayReceiver.h"

#include "imagelib/ipc/WireBytes.h"

namespace morvend::imglib {

using wire::malformed;

void ArrayReceiver::setReturns(const UniqueFd& page)
{
    _returns = std::make_shared<LeaseReturns>(page);
}

void ArrayReceiver::setDescriptors(std::vector<UniqueFd> descriptors)
{
    _descriptors = std::move(descriptors);
}

void ArrayReceiver::taken(std::uint64_t frames)
{
    if (_returns)
        _returns->setTaken(frames);
}

void ArrayReceiver::forget(const wire::Forget& forgotten)
{
    for (const std::uint32_t number : forgotten.numbers) {
        if (number >= _segments.size() || !_segments[number])
            malformed("the segment " + std::to_string(number) +
                      " is forgotten, which was never there");
        _segments[number] = nullptr;  // images in it keep it alive
    }
}

UniqueFd ArrayReceiver::descriptor(std::int32_t index)
{
    if (index < 0 || std::size_t(index) >= _descriptors.size() || !_descriptors[std::size_t(index)])
        malformed("a frame names a descriptor that it has not brought");
    return std::move(_descriptors[std::size_t(index)]);
}

image::PixelBufferPtr ArrayReceiver::outside(const wire::ArrayPlace& place, std::size_t bytes)
{
    std::shared_ptr<const Mapping> memory;
    const auto map = [&] {
        const UniqueFd file = descriptor(place.descriptor);
        memory =
            std::make_shared<const Mapping>(file, checkedMemoryFile(file), Mapping::Access::Read);
    };
    std::function<void()> release;
    if (place.place == wire::Place::OwnFile) {
        map();
        release = [memory] {};
    } else {
        if (place.number >= wire::MostSegments || !_returns)
            malformed("pixels in the segment " + std::to_string(place.number) + ", which can't be");
        if (place.number >= _segments.size())
            _segments.resize(place.number + 1);
        if (place.descriptor >= 0) {
            map();
            _segments[place.number] = memory;
        }
        memory = _segments[place.number];
        if (!memory)
            malformed("pixels in the segment " + std::to_string(place.number) +
                      ", which was never sent");
        // From here on the lease is returned, whatever happens to the message.
        release = [memory, returns = _returns, number = place.number] {
            returns->giveBack(number);
        };
    }
    const std::size_t size = memory->size();
    if (place.offset % 64 != 0 || place.offset > size ||
        bytes + wire::Padding > size - place.offset)
        malformed(std::to_string(bytes) + " bytes of pixels at " + std::to_string(place.offset) +
                  " in a memory file of " + std::to_string(size));
    return image::PixelBuffer::lease(memory->data() + place.offset, bytes, std::move(release));
}

image::MBasicImage<> ArrayReceiver::kept(std::uint32_t number)
{
    if (number >= _kept.size() || _kept[number].empty())
        malformed("the kept array " + std::to_string(number) + " was never sent");
    return _kept[number];
}

void ArrayReceiver::keep(std::uint32_t number, const image::MBasicImage<>& pixels)
{
    _kept[number] = pixels;
}

}  // namespace morvend::imglib
