// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// LZ4 chunks through the framing of BlockStream.
#include "imagelib/codec/Lz4.h"

#include "imagelib/codec/BlockStream.h"
#include "imagelib/codec/Lz4Block.h"
#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"

#include <algorithm>
#include <cstring>

namespace morvend::codec {

void lz4Decode(std::span<const std::byte> stored, std::span<std::byte> decoded, unsigned threads)
{
    forEachBlock(BlockStream(stored, decoded.size(), 1, Lz4BlockBytes), threads,
                 [decoded](const StoredBlock& block) {
                     const auto to = decoded.subspan(block.at, block.bytes);
                     if (block.stored.size() == block.bytes)
                         std::memcpy(to.data(), block.stored.data(), block.bytes);
                     else if (!lz4Block(block.stored, to))
                         throw MRuntimeException(block.failure("is damaged (LZ4)"));
                 });
}

std::vector<std::byte> lz4Encode(std::span<const std::byte> decoded, std::size_t blockBytes)
{
    assert(blockBytes > 0 && blockBytes <= Lz4BlockBytes);
    const std::size_t block = std::max<std::size_t>(1, std::min(blockBytes, decoded.size()));
    std::vector<std::byte> stored;
    stored.reserve(decoded.size() / 2);
    appendBigEndian(stored, decoded.size(), 8);
    appendBigEndian(stored, block, 4);
    for (std::size_t at = 0; at < decoded.size(); at += block)
        appendLz4Block(stored, decoded.subspan(at, std::min(block, decoded.size() - at)), true);
    return stored;
}

}  // namespace morvend::codec
