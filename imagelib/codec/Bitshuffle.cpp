// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bitshuffle chunks block by block: what one block needs stays in the first-level cache.
#include "imagelib/codec/Bitshuffle.h"

#include "imagelib/codec/BlockStream.h"
#include "imagelib/codec/Lz4Block.h"
#include "imagelib/codec/ShuffleKernels.h"
#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/StreamCopy.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include <zstd.h>

namespace morvend::codec {

namespace {

constexpr std::size_t Line = 64;

/// Memory for one block, kept by the thread while blocks have a usual size.
class Scratch {
public:
    explicit Scratch(std::size_t bytes)
        : _bytes(bytes)
    {
        constexpr std::size_t MostKept = (std::size_t(1) << 20) / Line;
        thread_local std::vector<CacheLine> kept;
        const std::size_t lines = std::max<std::size_t>((bytes + Line - 1) / Line, 1);
        if (lines <= MostKept) {
            if (kept.size() < lines)
                kept.resize(lines);
            _data = kept.data()->bytes;
        } else {
            _own = std::make_unique_for_overwrite<CacheLine[]>(lines);
            _data = _own[0].bytes;
        }
    }
    std::span<std::byte> part(std::size_t at, std::size_t bytes) const
    {
        assert(at + bytes <= _bytes);
        return {_data + at, bytes};
    }

private:
    struct alignas(Line) CacheLine {
        std::byte bytes[Line];
    };
    std::size_t _bytes;
    std::unique_ptr<CacheLine[]> _own;
    std::byte* _data = nullptr;
};

bool zstdBlock(std::span<const std::byte> packed, std::span<std::byte> to, const BlockMargins&)
{
    return ZSTD_decompress(to.data(), to.size(), packed.data(), packed.size()) == to.size();
}

std::size_t blockBytesOf(std::size_t blockElements, std::size_t elementSize)
{
    const std::size_t elements = blockElements ? blockElements : defaultBlockElements(elementSize);
    if (elements % 8 != 0)
        throw MRuntimeException("the bitshuffle filter has blocks of " + std::to_string(elements) +
                                " elements, no multiple of 8");
    return elements * elementSize;
}

/// Calls step(offset, bytes) for each block of a chunk; returns where the rest begins.
template <class Step>
std::size_t overBlocks(std::size_t chunkBytes, std::size_t elementSize, std::size_t blockBytes,
                       Step&& step)
{
    const std::size_t end = chunkBytes - chunkBytes % (8 * elementSize);
    for (std::size_t at = 0; at < end; at += blockBytes)
        step(at, std::min(blockBytes, end - at));
    return end;
}

void decodePlain(std::span<const std::byte> stored, std::size_t elementSize, std::size_t blockBytes,
                 std::span<std::byte> decoded)
{
    if (stored.size() != decoded.size())
        throw MRuntimeException("the chunk has " + std::to_string(stored.size()) + " instead of " +
                                std::to_string(decoded.size()) + " bytes");
    const UnshuffleBits unshuffle = bitUnshuffler();
    const std::size_t rest =
        overBlocks(decoded.size(), elementSize, blockBytes, [&](std::size_t at, std::size_t bytes) {
            unshuffle(stored.data() + at, bytes / elementSize, elementSize, decoded.data() + at);
        });
    std::copy(stored.begin() + static_cast<std::ptrdiff_t>(rest), stored.end(),
              decoded.begin() + static_cast<std::ptrdiff_t>(rest));
}

}  // namespace

std::size_t defaultBlockElements(std::size_t elementSize)
{
    constexpr std::size_t TargetBytes = 8192;
    constexpr std::size_t Least = 128;
    return std::max(Least, TargetBytes / elementSize / 8 * 8);
}

void bitshuffleDecode(std::span<const std::byte> stored, std::size_t elementSize,
                      BlockPacking packing, std::size_t blockElements, std::span<std::byte> decoded,
                      unsigned threads)
{
    assert(elementSize > 0);
    const std::size_t blockBytes = blockBytesOf(blockElements, elementSize);
    if (packing == BlockPacking::None)
        return decodePlain(stored, elementSize, blockBytes, decoded);
    const BlockStream blocks(stored, decoded.size(), 8 * elementSize, blockBytes);
    const auto unpack = packing == BlockPacking::Lz4 ? lz4PlanesUnpacker() : zstdBlock;
    const UnshuffleBits unshuffle = bitUnshuffler();
    const std::size_t planeBytes = blocks.blockBytes() + UsefulMargins.writable;
    const bool streams =
        image::isWorthStreaming(decoded.data(), decoded.size()) && blocks.blockBytes() % Line == 0;
    const auto rest =
        forEachBlock(blocks, threads, [&](const StoredBlock& block) {
            const Scratch scratch(planeBytes + (streams ? blocks.blockBytes() : 0));
            const auto planes = scratch.part(0, block.bytes);
            if (!unpack(block.stored, planes, {block.readable, UsefulMargins.writable}))
                throw MRuntimeException(block.failure(
                    packing == BlockPacking::Lz4 ? "is damaged (LZ4)" : "is damaged (zstd)"));
            std::byte* const target = decoded.data() + block.at;
            std::byte* const elements =
                streams ? scratch.part(planeBytes, block.bytes).data() : target;
            unshuffle(planes.data(), block.bytes / elementSize, elementSize, elements);
            if (streams) {
                image::streamCopy(elements, target, block.bytes);
                if (threads > 1)
                    image::finishStreaming();  // each thread orders its own stores
            }
        }).rest();
    image::finishStreaming();
    std::copy(rest.begin(), rest.end(), decoded.end() - static_cast<std::ptrdiff_t>(rest.size()));
}

std::vector<std::byte> bitshuffleEncode(std::span<const std::byte> decoded, std::size_t elementSize,
                                        BlockPacking packing, std::size_t blockElements)
{
    assert(elementSize > 0 && blockElements % 8 == 0 && packing != BlockPacking::Zstd);
    if (decoded.size() % elementSize != 0)
        throw MBadParameterException("Bitshuffle: " + std::to_string(decoded.size()) +
                                     " bytes are no whole number of elements of " +
                                     std::to_string(elementSize) + " bytes");
    const std::size_t blockBytes = blockBytesOf(blockElements, elementSize);
    const Scratch scratch(std::min(blockBytes, decoded.size()));
    std::vector<std::byte> stored;
    if (packing == BlockPacking::Lz4) {
        stored.reserve(decoded.size() / 4);
        appendBigEndian(stored, decoded.size(), 8);
        appendBigEndian(stored, blockBytes, 4);
    }
    const auto encode = [&](std::size_t at, std::size_t bytes) {
        const auto planes = scratch.part(0, bytes);
        shuffleBits(decoded.data() + at, bytes / elementSize, elementSize, planes.data());
        if (packing == BlockPacking::Lz4)
            appendLz4Block(stored, planes, false);
        else
            stored.insert(stored.end(), planes.begin(), planes.end());
    };
    const auto rest = decoded.subspan(overBlocks(decoded.size(), elementSize, blockBytes, encode));
    stored.insert(stored.end(), rest.begin(), rest.end());
    return stored;
}

}  // namespace morvend::codec
