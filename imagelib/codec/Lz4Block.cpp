// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// LZ4 blocks by liblz4, or by our own decoder where that is faster.
#include "imagelib/codec/Lz4Block.h"

#include "imagelib/codec/Lz4Vbmi.h"

#include <algorithm>
#include <limits>

#include <hwy/targets.h>
#include <lz4.h>

namespace morvend::codec {

namespace {

bool planesByLibrary(std::span<const std::byte> packed, std::span<std::byte> to,
                     const BlockMargins&)
{
    return lz4Block(packed, to);
}

#ifdef TARVIK_AVX512_FILES
bool planesByVectors(std::span<const std::byte> packed, std::span<std::byte> to,
                     const BlockMargins& margins)
{
    const std::byte* const inEnd = packed.data() + packed.size();
    std::byte* const outEnd = to.data() + to.size();
    return lz4BlockVbmi({packed.data(), inEnd, inEnd + margins.readable, to.data(), to.data(),
                         outEnd, outEnd + margins.writable});
}
#endif

}  // namespace

bool lz4Block(std::span<const std::byte> packed, std::span<std::byte> to)
{
    constexpr std::size_t Most = std::numeric_limits<int>::max();
    if (packed.size() > Most || to.size() > Most)
        return false;
    const int got = LZ4_decompress_safe(
        reinterpret_cast<const char*>(packed.data()), reinterpret_cast<char*>(to.data()),
        static_cast<int>(packed.size()), static_cast<int>(to.size()));
    return got >= 0 && static_cast<std::size_t>(got) == to.size();
}

UnpackLz4Planes lz4PlanesUnpacker()
{
#ifdef TARVIK_AVX512_FILES
    if (hwy::SupportedTargets() & HWY_AVX3_DL)
        return planesByVectors;
#endif
    return planesByLibrary;
}

void appendLz4Block(std::vector<std::byte>& to, std::span<const std::byte> block, bool mayStore)
{
    constexpr std::size_t LengthBytes = 4;
    const std::size_t head = to.size();
    const int bound = LZ4_compressBound(static_cast<int>(block.size()));
    to.resize(head + LengthBytes + static_cast<std::size_t>(bound));
    std::byte* const target = to.data() + head + LengthBytes;
    std::size_t length = static_cast<std::size_t>(LZ4_compress_default(
        reinterpret_cast<const char*>(block.data()), reinterpret_cast<char*>(target),
        static_cast<int>(block.size()), bound));
    if (mayStore && length >= block.size()) {
        std::copy(block.begin(), block.end(), target);
        length = block.size();
    }
    for (std::size_t i = 0; i < LengthBytes; ++i)
        to[head + i] = static_cast<std::byte>(length >> (8 * (LengthBytes - 1 - i)) & 0xff);
    to.resize(head + LengthBytes + length);
}

}  // namespace morvend::codec
