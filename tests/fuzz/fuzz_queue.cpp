// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A frame of the message queue: as it is, or as the parts of a frame whose head is right. What can
// be decoded can be sent on, and arrives as it was.
#include "imagelib/image/MException.h"
#include "imagelib/ipc/WireFormat.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"

#include <map>
#include <optional>

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

using Bytes = std::vector<std::byte>;
constexpr std::size_t MostOutside = std::size_t(1) << 20;

/// Gives any array of a moderate size.
class Arrays : public wire::ArraySource {
public:
    image::PixelBufferPtr outside(const wire::ArrayPlace&, std::size_t bytes) override
    {
        if (bytes > MostOutside)
            throw MRuntimeException("Queue: no such segment");
        auto buffer = image::PixelBuffer::allocate(bytes);
        std::fill_n(buffer->data(), bytes, std::byte(3));
        return buffer;
    }
    image::MBasicImage<> kept(std::uint32_t number) override
    {
        const auto found = _kept.find(number);
        if (found == _kept.end())
            throw MRuntimeException("Queue: no such array");
        return found->second;
    }
    void keep(std::uint32_t number, const image::MBasicImage<>& pixels) override
    {
        demand(number < wire::MostKept, "the number of an array to be kept");
        _kept[number] = pixels;
    }

private:
    std::map<std::uint32_t, image::MBasicImage<>> _kept;
};

std::optional<wire::Frame> decode(const Bytes& bytes)
{
    Arrays arrays;
    try {
        return wire::decodeFrame(bytes, arrays);
    } catch (const MException& error) {
        const std::string text = error.what();
        demand(text.starts_with("Queue: ") && text.size() < 300, "a failure has a reason");
        for (const char c : text)
            demand(static_cast<unsigned char>(c) >= ' ', "a failure can be shown");
        return std::nullopt;
    }
}

wire::Parcel parcelOf(const wire::Frame& frame)
{
    if (const auto* hello = std::get_if<wire::Hello>(&frame))
        return wire::packHello(*hello);
    if (const auto* forget = std::get_if<wire::Forget>(&frame))
        return wire::packForget(*forget);
    return wire::pack(std::get<Message>(frame));
}

/// A frame with its arrays inline.
Bytes encode(wire::Parcel parcel, std::uint32_t descriptors)
{
    Bytes bulk;
    for (const char c : parcel.text)
        bulk.push_back(static_cast<std::byte>(c));
    for (const wire::Parcel::Array& array : parcel.arrays) {
        wire::ArrayPlace place;
        place.place = wire::Place::Inline;
        place.offset = bulk.size();
        wire::setPlace(parcel, array, place);
        const auto* pixels = static_cast<const std::byte*>(array.pixels.cdata());
        bulk.insert(bulk.end(), pixels,
                    pixels + array.pixels.size() * (array.pixels.typeBits() / 8));
    }
    const auto head = wire::encodeHead(
        {parcel.kind, descriptors, static_cast<std::uint32_t>(parcel.meta.size()), bulk.size(), 0});
    Bytes frame(head.begin(), head.end());
    frame.insert(frame.end(), parcel.meta.begin(), parcel.meta.end());
    frame.insert(frame.end(), bulk.begin(), bulk.end());
    return frame;
}

Bytes withHead(Input& input)
{
    const auto kind = static_cast<wire::Kind>(input.byte() % 8);
    const std::uint32_t descriptors = input.byte() % 4;
    const std::size_t meta = input.word();
    const Bytes rest = input.rest();
    wire::Head head{kind, descriptors, 0, 0, 0};
    head.metaBytes = static_cast<std::uint32_t>(std::min(meta, rest.size()));
    head.bulkBytes = rest.size() - head.metaBytes;
    const auto bytes = wire::encodeHead(head);
    Bytes frame(bytes.begin(), bytes.end());
    frame.insert(frame.end(), rest.begin(), rest.end());
    return frame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const Bytes bytes = input.byte() & 1 ? input.rest() : withHead(input);
    const auto frame = decode(bytes);
    if (!frame)
        return 0;
    const auto* hello = std::get_if<wire::Hello>(&*frame);
    const Bytes sent = encode(parcelOf(*frame), hello && hello->leases ? 1 : 0);
    const auto arrived = decode(sent);
    demand(arrived.has_value(), "what came in can be sent on");
    hello = std::get_if<wire::Hello>(&*arrived);
    demand(encode(parcelOf(*arrived), hello && hello->leases ? 1 : 0) == sent,
           "what was sent on arrives as it was");
    return 0;
}
