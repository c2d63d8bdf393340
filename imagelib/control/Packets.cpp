// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/Packets.h"

#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/control/BoundedJson.h"
#include "imagelib/control/ConfigHeader.h"
#include "imagelib/image/QuotedText.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <limits>

namespace morvend::imglib {

using nlohmann::json;
using Bytes = std::span<const std::byte>;

namespace {

constexpr std::size_t PrefixBytes = 8;
constexpr std::int64_t MostSide = 65535;
constexpr std::int64_t MostNumber = std::numeric_limits<int>::max();
/// No byte of LZ4 stands for more; blocks and their lengths only make it less.
constexpr std::size_t BestRatio = 256;

struct PixelKind {
    const char* name;
    datatypes::Type type;
    std::size_t bits;
};
constexpr PixelKind PixelKinds[] = {
    {"uint8", datatypes::UINT, 8},     {"uint16", datatypes::UINT, 16},
    {"uint32", datatypes::UINT, 32},   {"int8", datatypes::INT, 8},
    {"int16", datatypes::INT, 16},     {"int32", datatypes::INT, 32},
    {"float32", datatypes::FLOAT, 32},
};

const PixelKind& pixelKind(const std::string& name)
{
    for (const PixelKind& kind : PixelKinds)
        if (name == kind.name)
            return kind;
    throw MRuntimeException("pixels of the unknown type " + morvend::quoted(name));
}

void unpack(Bytes stored, const std::string& compression, std::size_t elementSize,
            std::span<std::byte> decoded, unsigned threads)
{
    if (compression == "bslz4")
        codec::bitshuffleDecode(stored, elementSize, codec::BlockPacking::Lz4, 0, decoded, threads);
    else if (compression == "lz4")
        codec::lz4Decode(stored, decoded, threads);
    else
        std::memcpy(decoded.data(), stored.data(), decoded.size());
}

/// Throws unless so many bytes can be what a decoded size became.
void checkBytes(std::size_t stored, const std::string& compression, std::size_t decoded)
{
    if (compression != "none" && compression != "lz4" && compression != "bslz4")
        throw MRuntimeException("pixels in the unknown compression " +
                                morvend::quoted(compression));
    if (decoded > MostPixelBytes)
        throw MRuntimeException("an image of " + std::to_string(decoded) + " bytes; " +
                                std::to_string(MostPixelBytes) + " are the most");
    const bool possible = compression == "none" ? stored == decoded : stored >= decoded / BestRatio;
    if (!possible)
        throw MRuntimeException(std::to_string(stored) + " bytes of pixels can't be the " +
                                std::to_string(decoded) + " of the image");
}

MImage readPixels(const json& array, Bytes stored, unsigned threads)
{
    const auto width = toInteger(member(array, "width"), "width", 1, MostSide);
    const auto height = toInteger(member(array, "height"), "height", 1, MostSide);
    const PixelKind& kind = pixelKind(toText(member(array, "type"), "type"));
    const std::string compression = toText(member(array, "compression"), "compression");
    const auto bytes = toInteger(member(array, "bytes"), "bytes", 0, INT64_MAX);
    if (static_cast<std::uint64_t>(bytes) != stored.size())
        throw MRuntimeException("the head announces " + std::to_string(bytes) +
                                " bytes of pixels, " + std::to_string(stored.size()) + " came");
    const std::size_t decoded = std::size_t(width) * std::size_t(height) * (kind.bits / 8);
    checkBytes(stored.size(), compression, decoded);
    MImage image(int(width), int(height), kind.type, kind.bits);
    unpack(stored, compression, kind.bits / 8, {static_cast<std::byte*>(image.data()), decoded},
           threads);
    return image;
}

/// Numbers or texts of an array; other elements are refused.
nexus::Value readArray(const json& array)
{
    const bool texts = !array.empty() && array.front().is_string();
    std::vector<std::string> words;
    std::vector<double> numbers;
    for (const json& each : array) {
        if (texts)
            words.push_back(toText(each, "config"));
        else
            numbers.push_back(toDouble(each, "config"));
    }
    return texts ? nexus::Value(std::move(words)) : nexus::Value(std::move(numbers));
}

nexus::Value readValue(const json& value)
{
    if (value.is_array())
        return readArray(value);
    if (value.is_boolean())
        return std::int64_t(value.get<bool>());
    if (value.is_number_integer())
        return toInteger(value, "config", INT64_MIN, INT64_MAX);
    if (value.is_number())
        return toDouble(value, "config");
    return toText(value, "config");
}

bool usablePath(const std::string& path)
{
    if (path.size() > 255 || !path.starts_with('/'))
        return false;
    for (const char c : path)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
            return false;
    return true;
}

nexus::MBasicNeXusTree readConfig(const json& head)
{
    nexus::MBasicNeXusTree tree;
    const json* const config = memberIfAny(head, "config");
    if (!config)
        return tree;
    if (!config->is_object())
        throw MRuntimeException("\"config\" is no object");
    for (const auto& [path, described] : config->items()) {
        if (!usablePath(path))
            throw MRuntimeException("the path " + morvend::quoted(path) + " in \"config\"");
        nexus::Node& node = tree.node(path);
        node.value = readValue(member(described, "value"));
        for (const auto& [name, value] : described.items())
            if (name != "value" && !value.is_null() && !value.is_object())
                node.attributes[name] = readValue(value);
    }
    return tree;
}

int number(const json& head, const char* name)
{
    return static_cast<int>(toInteger(member(head, name), name, 0, MostNumber));
}

MStreamObject readFrame(const json& head, Bytes rest, unsigned threads)
{
    MImage image = readPixels(member(head, "pixels"), rest, threads);
    if (memberIfAny(head, "config"))
        image.setOptionalData(headerFromConfig(readConfig(head)));
    MStreamData::Packed packed;
    if (toText(member(member(head, "pixels"), "compression"), "compression") == "bslz4")
        packed = std::make_shared<const std::vector<std::byte>>(rest.begin(), rest.end());
    return MStreamObject(MStreamData(number(head, "series"), number(head, "frame"),
                                     std::move(image), std::move(packed)));
}

MStreamObject readStart(const json& head, Bytes rest, unsigned threads)
{
    MImage mask;
    if (const json* const pixels = memberIfAny(head, "pixels"))
        mask = readPixels(*pixels, rest, threads);
    if (!mask.empty() && mask.type() != datatypes::UINT)
        throw MRuntimeException("a pixel mask of another type than unsigned integers");
    const std::int64_t images =
        memberIfAny(head, "images") ? toInteger(head["images"], "images", 0, INT64_MAX) : 0;
    return MStreamObject(
        MStreamConfig(number(head, "series"), images, readConfig(head), std::move(mask)));
}

std::optional<MStreamObject> decode(Bytes packet, unsigned threads)
{
    if (packet.size() < PrefixBytes || std::memcmp(packet.data(), "TCU1", 4) != 0)
        throw MRuntimeException("what came is no packet of this version");
    std::size_t length = 0;
    for (std::size_t i = PrefixBytes; i-- > 4;)
        length = length << 8 | std::to_integer<std::size_t>(packet[i]);
    const Bytes after = packet.subspan(PrefixBytes);
    if (length > after.size())
        throw MRuntimeException("a head of " + std::to_string(length) + " bytes, " +
                                std::to_string(after.size()) + " came");
    const json head = parseObject({reinterpret_cast<const char*>(after.data()), length});
    const Bytes rest = after.subspan(length);
    const std::string type = toText(member(head, "type"), "type");
    if (type == "frame")
        return readFrame(head, rest, threads);
    if (type == "start")
        return readStart(head, rest, threads);
    if (type == "end")
        return MStreamObject(MStreamEnd{number(head, "series"),
                                        toInteger(member(head, "frames"), "frames", 0, INT64_MAX)});
    return std::nullopt;
}

}  // namespace

std::optional<MStreamObject> decodePacket(Bytes packet, unsigned threads)
{
    try {
        return decode(packet, threads);
    } catch (const MException& error) {
        throw MRuntimeException("Packet: " + std::string(error.what()));
    } catch (const std::bad_alloc&) {
        throw MRuntimeException("Packet: not enough memory");
    }
}

}  // namespace morvend::imglib
