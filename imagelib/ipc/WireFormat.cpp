// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Frames: heads, the description of an image, and what each kind of message is made of.
#include "imagelib/ipc/WireFormat.h"

#include "imagelib/ipc/WireHeader.h"

#include <algorithm>

namespace morvend::imglib::wire {

namespace {

constexpr std::uint32_t Magic = 0x514d5654;  // "TVMQ"
constexpr std::size_t PlaceBytes = 24;
constexpr std::uint64_t MostPixelBytes = std::uint64_t(1) << 38;

void writePlace(ByteWriter& out, const ArrayPlace& place)
{
    out.put(static_cast<std::uint8_t>(place.place));
    out.put(place.keep);
    out.put(std::uint16_t(0));
    out.put(place.number);
    out.put(place.descriptor);
    out.put(std::uint32_t(0));
    out.put(place.offset);
}

ArrayPlace readPlace(ByteReader& in)
{
    ArrayPlace place;
    place.place = static_cast<Place>(in.get<std::uint8_t>());
    place.keep = in.get<std::uint8_t>();
    in.take(2);
    place.number = in.get<std::uint32_t>();
    place.descriptor = in.get<std::int32_t>();
    in.take(4);
    place.offset = in.get<std::uint64_t>();
    if (place.place > Place::Kept)
        malformed("pixels in an unknown place");
    if (place.keep != NotKept && place.keep >= MostKept)
        malformed("an array to be kept as number " + std::to_string(place.keep));
    return place;
}

/// Reads the images of one frame.
class ImageReader {
public:
    ImageReader(ByteReader& in, std::span<const std::byte> bulk, ArraySource& source)
        : _in(in)
        , _bulk(bulk)
        , _source(source)
    {}

    MImage image(bool isMask)
    {
        const auto width = _in.get<std::int32_t>();
        const auto height = _in.get<std::int32_t>();
        const int kind = _in.get<std::uint8_t>();
        const std::size_t bits = _in.get<std::uint8_t>();
        if (kind > datatypes::FLOAT)
            malformed("pixels of the unknown kind " + std::to_string(kind));
        const auto type = static_cast<datatypes::Type>(kind);
        _in.take(2);
        const ArrayPlace place = readPlace(_in);
        MImage result = pixels(width, height, type, bits, place);
        readHeader(_in, result.optionalData(), [&]() -> MImage {
            if (isMask)
                malformed("a mask with a mask");
            return image(true);
        });
        return result;
    }

private:
    MImage pixels(int width, int height, datatypes::Type type, std::size_t bits,
                  const ArrayPlace& place)
    {
        if (type == datatypes::NONE && bits == 0 && width == 0 && height == 0 &&
            place.place == Place::Nowhere)
            return {};
        if (!datatypes::isPixelType(type, bits))
            malformed("no pixel type: " + std::to_string(int(type)) + " of " +
                      std::to_string(bits) + " bits");
        if (width < 0 || height < 0)
            malformed("an image of " + std::to_string(width) + " x " + std::to_string(height) +
                      " pixels");
        // At most 2^62 pixels, so that the product with the element size fits.
        const auto count = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
        if (count > MostPixelBytes / (bits / 8))
            malformed("an image of " + std::to_string(count) + " pixels");
        if ((count == 0) != (place.place == Place::Nowhere))
            malformed(count ? "an image without its pixels" : "an empty image with pixels");
        if (count == 0)
            return MImage(width, height, type, bits);
        const auto found = array(type, bits, static_cast<std::size_t>(count), place);
        if (place.keep != NotKept)
            _source.keep(place.keep, found);
        return MImage(width, height, found);
    }

    image::MBasicImage<> array(datatypes::Type type, std::size_t bits, std::size_t count,
                               const ArrayPlace& place)
    {
        const std::size_t bytes = count * (bits / 8);
        if (place.place == Place::Kept) {
            const image::MBasicImage<> kept = _source.kept(place.number);
            if (kept.type() != type || kept.typeBits() != bits || kept.size() != count)
                malformed("the kept array " + std::to_string(place.number) + " is another one");
            return kept;
        }
        if (place.place != Place::Inline) {
            const image::PixelBufferPtr lent = _source.outside(place, bytes);
            // Values of a bool other than 0 and 1 are invalid: such pixels are copied and
            // corrected.
            return type == datatypes::BOOL ? copied(type, bits, {lent->cdata(), bytes})
                                           : image::MBasicImage<>(lent, type, bits, count);
        }
        if (place.offset > _bulk.size() || bytes > _bulk.size() - place.offset)
            malformed("pixels beyond the end of their message");
        return copied(type, bits, _bulk.subspan(std::size_t(place.offset), bytes));
    }

    static image::MBasicImage<> copied(datatypes::Type type, std::size_t bits,
                                       std::span<const std::byte> from)
    {
        image::MBasicImage<> result(std::allocator<char>(), type, bits, from.size() / (bits / 8));
        auto* to = static_cast<std::byte*>(result.data());
        if (type == datatypes::BOOL)
            std::transform(from.begin(), from.end(), to,
                           [](std::byte value) { return std::byte(value != std::byte(0)); });
        else
            std::memcpy(to, from.data(), from.size());
        return result;
    }

    ByteReader& _in;
    const std::span<const std::byte> _bulk;
    ArraySource& _source;
};

void writeImage(ByteWriter& out, const MImage& image, bool isMask, Parcel& parcel)
{
    out.put(std::int32_t(image.width()));
    out.put(std::int32_t(image.height()));
    out.put(static_cast<std::uint8_t>(image.type()));
    out.put(static_cast<std::uint8_t>(image.typeBits()));
    out.put(std::uint16_t(0));
    if (image.size() > 0)
        parcel.arrays.push_back({image.imageData(), out.size(), isMask});
    writePlace(out, {});
    writeHeader(out, image.optionalData(), [&](const MImage& mask) {
        if (isMask)
            throw MBadParameterException("Queue: a mask can't have a mask of its own");
        writeImage(out, mask, true, parcel);
    });
}

Parcel finish(Kind kind, ByteWriter& out, Parcel parcel = {})
{
    if (out.size() > MostMeta)
        throw MBadParameterException("Queue: a description of " + std::to_string(out.size()) +
                                     " bytes is too large; " + std::to_string(MostMeta) +
                                     " are allowed");
    parcel.kind = kind;
    parcel.meta = out.take();
    return parcel;
}

Hello readHello(ByteReader& in, const Head& head)
{
    Hello hello;
    hello.process = in.get<std::uint32_t>();
    hello.name = in.text();
    hello.leases = head.descriptors == 1;
    if (head.descriptors > 1)
        malformed("a hello with " + std::to_string(head.descriptors) + " descriptors");
    return hello;
}

Forget readForget(ByteReader& in)
{
    Forget forget;
    for (auto numbers = in.count(4); numbers > 0; --numbers)
        forget.numbers.push_back(in.get<std::uint32_t>());
    return forget;
}

}  // namespace

Head decodeHead(std::span<const std::byte> bytes)
{
    ByteReader in(bytes.first(std::min(bytes.size(), HeadBytes)));
    Head head;
    if (in.get<std::uint32_t>() != Magic)
        malformed("what came is no frame");
    if (const auto version = in.get<std::uint16_t>(); version != Version)
        malformed("version " + std::to_string(version) + " of the protocol; version " +
                  std::to_string(Version) + " is spoken here");
    head.kind = static_cast<Kind>(in.get<std::uint16_t>());
    head.descriptors = in.get<std::uint32_t>();
    head.metaBytes = in.get<std::uint32_t>();
    head.bulkBytes = in.get<std::uint64_t>();
    head.number = in.get<std::uint64_t>();
    if (head.kind < Kind::Hello || head.kind > Kind::Forget)
        malformed("a frame of the unknown kind " + std::to_string(int(head.kind)));
    if (head.metaBytes > MostMeta || head.bulkBytes > MostBulk)
        malformed("a frame of " + std::to_string(head.metaBytes) + " + " +
                  std::to_string(head.bulkBytes) + " bytes is too large");
    if (head.descriptors > MostDescriptors)
        malformed("a frame with " + std::to_string(head.descriptors) + " descriptors");
    const bool carriesBulk = head.kind == Kind::Text || head.kind == Kind::Image;
    if ((head.bulkBytes > 0 && !carriesBulk) || (head.metaBytes > 0 && head.kind == Kind::Text))
        malformed("a frame of the kind " + std::to_string(int(head.kind)) +
                  " has parts that it can't have");
    if (head.descriptors > 0 && head.kind != Kind::Image && head.kind != Kind::Hello)
        malformed("descriptors in a frame that has no use for them");
    return head;
}

std::array<std::byte, HeadBytes> encodeHead(const Head& head)
{
    ByteWriter out;
    out.put(Magic);
    out.put(Version);
    out.put(static_cast<std::uint16_t>(head.kind));
    out.put(head.descriptors);
    out.put(head.metaBytes);
    out.put(head.bulkBytes);
    out.put(head.number);
    std::array<std::byte, HeadBytes> bytes;
    std::ranges::copy(out.take(), bytes.begin());
    return bytes;
}

Frame decodeFrame(std::span<const std::byte> frame, ArraySource& source)
{
    const Head head = decodeHead(frame);
    if (frame.size() != head.frameBytes())
        malformed("a frame of " + std::to_string(frame.size()) + " bytes calls itself one of " +
                  std::to_string(head.frameBytes()));
    ByteReader in(frame.subspan(HeadBytes, head.metaBytes));
    const auto bulk = frame.subspan(HeadBytes + head.metaBytes);
    Frame result;
    switch (head.kind) {
    case Kind::Hello:
        result = readHello(in, head);
        break;
    case Kind::Text:
        result = Message(ByteReader(bulk).raw(bulk.size()));
        break;
    case Kind::Image:
        result = Message(ImageReader(in, bulk, source).image(false));
        break;
    case Kind::DrawingList:
        result = Message(readList(in));
        break;
    case Kind::Forget:
        result = readForget(in);
        break;
    }
    in.expectEnd();
    return result;
}

Parcel pack(Message message)
{
    ByteWriter out;
    if (auto* text = std::get_if<std::string>(&message)) {
        if (text->size() > MostBulk)
            throw MBadParameterException("Queue: a text of " + std::to_string(text->size()) +
                                         " bytes is too long; " + std::to_string(MostBulk) +
                                         " are allowed");
        Parcel parcel;
        parcel.text = std::move(*text);
        return parcel;
    }
    Parcel parcel;
    if (const auto* image = std::get_if<MImage>(&message)) {
        writeImage(out, *image, false, parcel);
        return finish(Kind::Image, out, std::move(parcel));
    }
    writeList(out, std::get<MDrawingList<>>(message));
    return finish(Kind::DrawingList, out);
}

void setPlace(Parcel& parcel, const Parcel::Array& array, const ArrayPlace& place)
{
    ByteWriter out;
    writePlace(out, place);
    static_assert(PlaceBytes == 24);
    std::ranges::copy(out.take(), parcel.meta.begin() + static_cast<std::ptrdiff_t>(array.at));
}

Parcel packHello(const Hello& hello)
{
    ByteWriter out;
    out.put(hello.process);
    out.text(hello.name);
    return finish(Kind::Hello, out);
}

Parcel packForget(const Forget& forget)
{
    ByteWriter out;
    out.put(static_cast<std::uint32_t>(forget.numbers.size()));
    for (const std::uint32_t number : forget.numbers)
        out.put(number);
    return finish(Kind::Forget, out);
}

}  // namespace morvend::imglib::wire
