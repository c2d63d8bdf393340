// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A byte-offset stream after the width and the number of its pixels. Every instruction set gives
// what the decoder gives that goes pixel by pixel, and what is packed comes back.
#include "imagelib/io/formats/cbf/ByteOffset.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/Targets.h"

#include <cstring>

using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

using Bytes = std::vector<std::byte>;

void unpackAndCompare(const Bytes& stream, std::size_t pixelBytes, std::size_t most)
{
    Bytes plain(most * pixelBytes), pixels(plain.size());
    const UnpackedPixels expected = unpackByteOffsetPlain(stream, pixelBytes, plain);
    onEveryTarget([&] {
        const UnpackedPixels got = unpackByteOffset(stream, pixelBytes, pixels);
        demand(got.pixels == expected.pixels, "number of pixels unpacked");
        demand(got.bytes == expected.bytes, "number of bytes read");
        demand(std::equal(pixels.begin(),
                          pixels.begin() + static_cast<std::ptrdiff_t>(got.pixels * pixelBytes),
                          plain.begin()),
               "pixels unpacked");
        pixels.assign(pixels.size(), std::byte(0xa5));
    });
}

void packAndUnpack(const Bytes& data, std::size_t pixelBytes, bool isSigned)
{
    const Bytes pixels(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(
                                                        data.size() / pixelBytes * pixelBytes));
    onEveryTarget([&] {
        const Bytes stream = packByteOffset(pixels, pixelBytes, isSigned);
        Bytes back(pixels.size());
        const UnpackedPixels got = unpackByteOffset(stream, pixelBytes, back);
        demand(got.bytes == stream.size() && back == pixels, "pixels packed and unpacked");
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const unsigned choice = input.byte();
    const std::size_t pixelBytes = std::size_t(1) << (choice & 3);
    const std::size_t pixels = input.word();
    const Bytes rest = input.rest();
    // No stream holds more pixels than bytes; most streams are long enough for all of theirs.
    unpackAndCompare(rest, pixelBytes, choice & 4 ? rest.size() : pixels % (rest.size() + 100));
    packAndUnpack(rest, pixelBytes, (choice & 8) != 0);
    return 0;
}
