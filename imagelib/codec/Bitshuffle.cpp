// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bitshuffle chunks block by block: what one block needs stays in the first-level cache.
#include "imagelib/codec/Bitshuffle.h"

#include "imagelib/codec/BitPlanes.h"
#include "imagelib/codec/BlockStream.h"
#include "imagelib/codec/Shuffle.h"
#include "imagelib/image/MException.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>
#include <string>

#include <zstd.h>

namespace morvend::codec {

namespace {

/// Two areas of a block's size, kept by the thread as long as blocks have a usual size.
class Scratch {
public:
    explicit Scratch(std::size_t bytes)
        : _bytes(bytes)
    {
        constexpr std::size_t MostKept = std::size_t(1) << 20;
        thread_local std::vector<std::byte> kept;
        if (bytes <= MostKept) {
            if (kept.size() < 2 * bytes)
                kept.resize(2 * bytes);
            _data = kept.data();
        } else {
            _own = std::make_unique_for_overwrite<std::byte[]>(2 * bytes);
            _data = _own.get();
        }
    }
    std::span<std::byte> first() const { return {_data, _bytes}; }
    std::span<std::byte> second() const { return {_data + _bytes, _bytes}; }

private:
    std::size_t _bytes;
    std::unique_ptr<std::byte[]> _own;
    std::byte* _data = nullptr;
};

/// Bit planes of one block to its elements; `bytes` is scratch of the same size.
void unshuffleBlock(std::span<const std::byte> planes, std::size_t elementSize, JoinPlanes join,
                    std::span<std::byte> bytes, std::span<std::byte> elements)
{
    const std::size_t count = planes.size() / elementSize;
    std::byte* const joined = elementSize == 1 ? elements.data() : bytes.data();
    for (std::size_t at = 0; at < planes.size(); at += count)
        join(planes.data() + at, count, joined + at);
    if (elementSize > 1)
        byteUnshuffle(bytes.first(planes.size()), elementSize, elements);
}

void shuffleBlock(std::span<const std::byte> elements, std::size_t elementSize,
                  std::span<std::byte> bytes, std::span<std::byte> planes)
{
    const std::size_t count = elements.size() / elementSize;
    byteShuffle(elements, elementSize, bytes.first(elements.size()));
    for (std::size_t at = 0; at < elements.size(); at += count)
        splitPlanes(bytes.data() + at, count, planes.data() + at);
}

bool zstdBlock(std::span<const std::byte> packed, std::span<std::byte> to)
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
    const Scratch scratch(std::min(blockBytes, decoded.size()));
    const JoinPlanes join = joinPlanes();
    const std::size_t rest =
        overBlocks(decoded.size(), elementSize, blockBytes, [&](std::size_t at, std::size_t bytes) {
            unshuffleBlock(stored.subspan(at, bytes), elementSize, join, scratch.first(),
                           decoded.subspan(at, bytes));
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
    const auto unpack = packing == BlockPacking::Lz4 ? lz4Block : zstdBlock;
    const JoinPlanes join = joinPlanes();
    const auto rest =
        forEachBlock(blocks, threads, [&](const StoredBlock& block) {
            const Scratch scratch(blocks.blockBytes());
            const auto planes = scratch.first().first(block.bytes);
            if (!unpack(block.stored, planes))
                throw MRuntimeException(block.failure(
                    packing == BlockPacking::Lz4 ? "is damaged (LZ4)" : "is damaged (zstd)"));
            unshuffleBlock(planes, elementSize, join, scratch.second(),
                           decoded.subspan(block.at, block.bytes));
        }).rest();
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
        const auto planes = scratch.second().first(bytes);
        shuffleBlock(decoded.subspan(at, bytes), elementSize, scratch.first(), planes);
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
