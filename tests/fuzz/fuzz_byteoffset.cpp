// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A byte-offset stream behind the width and the number of its pixels. Every instruction set gives
// what a decoder gives that follows the definition pixel by pixel.
#include "imagelib/io/formats/cbf/ByteOffset.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/Targets.h"

#include <cstring>

using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

using Bytes = std::vector<std::byte>;

/// What a stream holds by definition.
struct Definition {
    Definition(const Bytes& stream, std::size_t pixelBytes, std::size_t most)
        : pixels(most * pixelBytes)
    {
        std::uint64_t value = 0;
        while (count < most) {
            std::size_t at = used;
            std::uint64_t difference = 0;
            // Each width's lowest number announces the next one.
            for (std::size_t width = 1;; width *= 2) {
                if (stream.size() - at < width)
                    return;
                difference = 0;
                for (std::size_t i = width; i-- > 0;)
                    difference = difference << 8 | std::to_integer<std::uint64_t>(stream[at + i]);
                at += width;
                const std::uint64_t lowest = std::uint64_t(1) << (8 * width - 1);
                if (difference & lowest)
                    difference |= ~(lowest - 1);
                if (width == 8 || difference != ~(lowest - 1))
                    break;
            }
            value += difference;
            for (std::size_t i = 0; i < pixelBytes; ++i)
                pixels[count * pixelBytes + i] = static_cast<std::byte>(value >> (8 * i) & 0xff);
            ++count;
            used = at;
        }
    }

    Bytes pixels;
    std::size_t count = 0;  ///< of pixels
    std::size_t used = 0;   ///< bytes of the stream
};

void unpackAndCompare(const Bytes& stream, std::size_t pixelBytes, std::size_t most)
{
    const Definition expected(stream, pixelBytes, most);
    const auto compare = [&](const UnpackedPixels& got, const Bytes& pixels) {
        demand(got.pixels == expected.count, "number of pixels unpacked");
        demand(got.bytes == expected.used, "number of bytes read");
        demand(std::equal(pixels.begin(),
                          pixels.begin() + static_cast<std::ptrdiff_t>(got.pixels * pixelBytes),
                          expected.pixels.begin()),
               "pixels unpacked");
    };
    Bytes pixels(most * pixelBytes);
    compare(unpackByteOffsetPlain(stream, pixelBytes, pixels), pixels);
    onEveryTarget([&] {
        pixels.assign(pixels.size(), std::byte(0xa5));
        compare(unpackByteOffset(stream, pixelBytes, pixels), pixels);
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
