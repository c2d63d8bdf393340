// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A stream of packed, canonical or nibble-offset CBF pixels after the layout of its image.
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/Canonical.h"
#include "imagelib/io/formats/cbf/NibbleOffset.h"
#include "imagelib/io/formats/cbf/Packed.h"
#include "tests/fuzz/Demand.h"
#include "tests/fuzz/Input.h"

using namespace morvend::imglib;
using namespace tarvik::fuzz;

namespace {

using Bytes = std::vector<std::byte>;

/// Unpacks into `count` pixels and into as many as were there: the second time nothing may differ.
template <class Unpack>
void unpackTwice(std::size_t count, std::size_t pixelBytes, std::uint64_t most, Unpack&& unpack)
{
    Bytes pixels(count * pixelBytes, std::byte(0xa5));
    const std::size_t got = unpack(pixels);
    demand(got <= count && got <= most, "no more pixels than the stream can hold");
    Bytes again(got * pixelBytes);
    demand(unpack(again) == got, "as many pixels as before");
    pixels.resize(again.size());
    demand(pixels == again, "pixels unpacked");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const unsigned choice = input.byte();
    PackedLayout layout;
    layout.version2 = (choice & 1) != 0;
    layout.flat = (choice & 2) != 0;
    layout.uncorrelatedSections = (choice & 4) != 0;
    layout.isUnsigned = (choice & 8) != 0;
    layout.fast = input.byte() + 2;
    layout.second = input.byte() + 1;
    const std::size_t sections = input.byte() % 4 + 1;
    const std::size_t pixelBytes = std::size_t(1) << (choice >> 4 & 3);
    const std::size_t count = layout.fast * layout.second * sections;
    const Bytes stream = input.rest();
    if (choice & 128)
        unpackTwice(count, pixelBytes, mostNibbleOffsetPixels(stream), [&](Bytes& pixels) {
            try {
                return unpackNibbleOffset(stream, pixelBytes, pixels);
            } catch (const morvend::MException&) {
                return std::size_t(0);
            }
        });
    else if (choice & 64)
        unpackTwice(count, pixelBytes, mostCanonicalPixels(stream), [&](Bytes& pixels) {
            return unpackCanonical(stream, pixelBytes, layout.isUnsigned, pixels);
        });
    else if (pixelBytes <= 4)
        unpackTwice(count, pixelBytes, mostPackedPixels(stream), [&](Bytes& pixels) {
            return unpackPacked(stream, layout, pixelBytes, pixels);
        });
    return 0;
}
