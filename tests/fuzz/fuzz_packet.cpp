// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A packet of a control unit: as it is, or a head and pixels whose lengths are put right.
#include "imagelib/control/ConfigHeader.h"
#include "imagelib/control/Packets.h"
#include "imagelib/image/MException.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

using Bytes = std::vector<std::byte>;

/// With the mark and the true length before it.
Bytes withPrefix(Input& input)
{
    const std::size_t length = input.word();
    const Bytes rest = input.rest();
    const std::size_t head = std::min(length, rest.size());
    Bytes packet;
    for (const char c : {'T', 'C', 'U', '1'})
        packet.push_back(static_cast<std::byte>(c));
    for (int i = 0; i < 4; ++i)
        packet.push_back(static_cast<std::byte>(head >> 8 * i & 0xff));
    packet.insert(packet.end(), rest.begin(), rest.end());
    return packet;
}

void demandWhole(const MImage& image)
{
    demand(image.size() == std::size_t(image.width()) * std::size_t(image.height()),
           "an image has all the pixels of its size");
    demand(image.dataSize() <= MostPixelBytes, "an image is in its bound");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const Bytes packet = input.byte() & 1 ? input.rest() : withPrefix(input);
    try {
        const auto object = decodePacket(packet);
        if (!object)
            return 0;
        if (object->type() == MStreamObject::Frame)
            demandWhole(object->data().image());
        if (object->type() == MStreamObject::Header) {
            demandWhole(object->config().pixelMask());
            headerFromConfig(object->config().config());
        }
    } catch (const MException& error) {
        const std::string text = error.what();
        demand(text.starts_with("Packet: ") && text.size() < 400, "a failure has a reason");
        for (const char c : text)
            demand(static_cast<unsigned char>(c) >= ' ', "a failure can be shown");
    }
    return 0;
}
