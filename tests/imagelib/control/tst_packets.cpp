// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Packets byte by byte: every pixel type and compression, and heads that make no sense.
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/control/Packets.h"
#include "tests/imagelib/control/Calls.h"

#include <gmock/gmock.h>

using namespace morvend::imglib;
using namespace tarvik::tests;
using testing::HasSubstr;

namespace {

using Bytes = std::vector<std::byte>;

Bytes packet(const std::string& head, const Bytes& pixels = {})
{
    Bytes bytes;
    const auto add = [&](const std::string& text) {
        for (const char c : text)
            bytes.push_back(static_cast<std::byte>(c));
    };
    add("TCU1");
    for (int i = 0; i < 4; ++i)
        bytes.push_back(static_cast<std::byte>(head.size() >> 8 * i & 0xff));
    add(head);
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    return bytes;
}

std::string frame(const std::string& pixels)
{
    return R"({"type":"frame","series":1,"frame":2,"pixels":{)" + pixels + "}}";
}

std::string array(const std::string& type, const std::string& compression, std::size_t bytes)
{
    return R"("width":40,"height":20,"type":")" + type + R"(","compression":")" + compression +
           R"(","bytes":)" + std::to_string(bytes);
}

TEST(Packet, EveryTypeInEveryCompression)
{
    for (const auto& [type, bits] : {std::pair{"uint8", 8},
                                     {"uint16", 16},
                                     {"uint32", 32},
                                     {"int8", 8},
                                     {"int16", 16},
                                     {"int32", 32},
                                     {"float32", 32}}) {
        Bytes plain(40 * 20 * std::size_t(bits) / 8);
        for (std::size_t i = 0; i < plain.size(); ++i)
            plain[i] = static_cast<std::byte>(i * i % 7);
        const std::pair<const char*, Bytes> kinds[] = {
            {"none", plain},
            {"lz4", morvend::codec::lz4Encode(plain)},
            {"bslz4", morvend::codec::bitshuffleEncode(plain, std::size_t(bits) / 8)}};
        for (const auto& [compression, stored] : kinds) {
            SCOPED_TRACE(std::string(type) + " " + compression);
            const auto object =
                decodePacket(packet(frame(array(type, compression, stored.size())), stored));
            ASSERT_TRUE(object);
            const MImage& image = object->data().image();
            EXPECT_EQ(object->data().seriesId(), 1);
            EXPECT_EQ(object->data().imageId(), 2);
            EXPECT_EQ(image.typeBits(), std::size_t(bits));
            ASSERT_EQ(image.dataSize(), plain.size());
            EXPECT_EQ(std::memcmp(image.cdata(), plain.data(), plain.size()), 0);
        }
    }
}

TEST(Packet, OfAnUnknownTypeIsNothing)
{
    EXPECT_FALSE(decodePacket(packet(R"({"type":"news","text":"hello"})")));
}

struct Bad {
    const char* name;
    Bytes bytes;
    const char* text;
};

TEST(Packet, ThatMakesNoSenseIsRefusedInWords)
{
    const Bytes plain(40 * 20);
    const std::string deep(20, '[');
    std::string many;
    for (int i = 0; i < 20'000; ++i)
        many += "1,";
    Bytes cut = packet(frame(array("uint8", "none", 800)), plain);
    cut.resize(60);
    const std::string start = R"({"type":"start","series":1,"config":{)";
    const Bad rows[] = {
        {"nothing", {}, "no packet"},
        {"cut off", cut, "a head of"},
        {"an array", packet("[]"), "no JSON object"},
        {"deep", packet("{\"a\":" + deep), "levels"},
        {"wide", packet("{\"a\":[" + many + "1]}"), "values"},
        {"no type", packet("{}"), "\"type\" is missing"},
        {"series", packet(R"({"type":"end","series":-1,"frames":1})"), "\"series\" is not"},
        {"huge number", packet(R"({"type":"end","series":1,"frames":18446744073709551615})"),
         "frames"},
        {"no number", packet(R"({"type":"end","series":1,"frames":1e999})"), "no JSON"},
        {"width 0", packet(frame(R"("width":0,"height":1)")), "width"},
        {"bytes", packet(frame(array("uint8", "none", 801)), plain), "announces"},
        {"pixels", packet(frame(array("uint64", "none", 800)), plain), "unknown type"},
        {"packing", packet(frame(array("uint8", "zip", 800)), plain), "unknown compression"},
        {"size", packet(frame(array("uint16", "none", 800)), plain), "can't be the 1600"},
        {"a bomb",
         packet(
             frame(
                 R"("width":16000,"height":16000,"type":"uint8","compression":"lz4","bytes":800)"),
             plain),
         "can't be the 256000000"},
        {"too many",
         packet(
             frame(
                 R"("width":65535,"height":65535,"type":"uint8","compression":"lz4","bytes":800)"),
             plain),
         "are the most"},
        {"path", packet(start + R"("entry":{"value":1}}})"), "the path"},
        {"group", packet(start + R"("/entry":5}})"), "\"value\" is missing"},
        {"mixture", packet(start + R"("/entry":{"value":[1,"a"]}}})"), "config"},
    };
    for (const Bad& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = outcomeOf([&] { decodePacket(row.bytes); });
        EXPECT_EQ(outcome.failure, "MRuntimeException");
        EXPECT_THAT(outcome.text, HasSubstr(row.text));
        EXPECT_EQ(outcome.text.rfind("Packet: ", 0), 0u);
    }
}

}  // namespace
