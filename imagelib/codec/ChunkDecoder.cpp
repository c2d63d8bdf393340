// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Filter pipelines undone step by step, the last one straight into the caller's memory.
#include "imagelib/codec/ChunkDecoder.h"

#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/Deflate.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/codec/Shuffle.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/PixelBuffer.h"

#include <cstring>
#include <utility>

namespace morvend::codec {

namespace {

constexpr std::size_t MostFilters = 32;  // the bits of the filter mask

unsigned valueAt(const ChunkFilter& filter, std::size_t place)
{
    return place < filter.values.size() ? filter.values[place] : 0;
}

std::size_t elementSizeOf(const ChunkFilter& filter, std::size_t fallback)
{
    const unsigned given = valueAt(filter, filter.id == ShuffleFilter ? 0 : 2);
    return given ? given : fallback;
}

BlockPacking packingOf(const ChunkFilter& filter)
{
    return static_cast<BlockPacking>(valueAt(filter, 4));
}

/// True if the filter keeps the number of bytes.
bool keepsSize(const ChunkFilter& filter)
{
    return filter.id == ShuffleFilter ||
           (filter.id == BitshuffleFilter && packingOf(filter) == BlockPacking::None);
}

/// The filters that were applied to a chunk, the last one first.
std::vector<const ChunkFilter*> stepsBack(const ChunkPipeline& pipeline, std::uint32_t filterMask)
{
    std::vector<const ChunkFilter*> steps;
    for (std::size_t i = pipeline.filters.size(); i-- > 0;)
        if (i >= MostFilters || !(filterMask >> i & 1U))
            steps.push_back(&pipeline.filters[i]);
    return steps;
}

std::string obstacleOf(const ChunkFilter& filter, std::size_t elementSize)
{
    switch (filter.id) {
    case DeflateFilter:
    case Lz4Filter:
        return {};
    case ShuffleFilter:
        return elementSizeOf(filter, elementSize) ? std::string()
                                                  : filterText(filter.id) + " has no element size";
    case BitshuffleFilter:
        break;
    default:
        return filterText(filter.id) + " is not known";
    }
    // The bound keeps products of sizes far from overflow.
    if (const std::size_t size = elementSizeOf(filter, elementSize); size == 0 || size > 0xffff)
        return filterText(filter.id) + " has elements of " + std::to_string(size) + " bytes";
    if (const unsigned block = valueAt(filter, 3); block % 8 != 0)
        return filterText(filter.id) + " has blocks of " + std::to_string(block) +
               " elements, no multiple of 8";
    switch (packingOf(filter)) {
    case BlockPacking::None:
    case BlockPacking::Lz4:
    case BlockPacking::Zstd:
        return {};
    }
    return filterText(filter.id) + " has the unknown packing " + std::to_string(valueAt(filter, 4));
}

void undo(const ChunkFilter& filter, std::size_t elementSize, std::span<const std::byte> stored,
          std::span<std::byte> decoded, unsigned threads)
{
    const std::size_t size = elementSizeOf(filter, elementSize);
    switch (filter.id) {
    case DeflateFilter:
        return inflateExactly(stored, decoded);
    case ShuffleFilter:
        return byteUnshuffle(stored, size, decoded);
    case Lz4Filter:
        return lz4Decode(stored, decoded, threads);
    default:
        return bitshuffleDecode(stored, size, packingOf(filter), valueAt(filter, 3), decoded,
                                threads);
    }
}

}  // namespace

std::string filterText(unsigned id)
{
    static constexpr std::pair<unsigned, const char*> Names[] = {
        {1, "deflate"},        {2, "shuffle"},  {3, "fletcher32"}, {4, "szip"},      {5, "nbit"},
        {6, "scale"},          {307, "bzip2"},  {32000, "LZF"},    {32001, "blosc"}, {32004, "LZ4"},
        {32008, "bitshuffle"}, {32013, "zfp"},  {32015, "zstd"},   {32017, "SZ"},    {32024, "SZ3"},
        {32026, "blosc2"},     {32028, "SPERR"}};
    std::string text = "filter " + std::to_string(id);
    for (const auto& [known, name] : Names)
        if (known == id)
            text += std::string(" (") + name + ')';
    return text;
}

std::string decodingObstacle(const ChunkPipeline& pipeline, std::uint32_t filterMask)
{
    const auto steps = stepsBack(pipeline, filterMask);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const std::string obstacle = obstacleOf(*steps[i], pipeline.elementSize);
        if (!obstacle.empty())
            return obstacle;
        // The size between two filters is known only while nothing but the last one packs.
        if (i > 0 && !keepsSize(*steps[i]))
            return filterText(steps[i]->id) + " stands before another filter";
    }
    return {};
}

void decodeChunk(const ChunkPipeline& pipeline, std::span<const std::byte> stored,
                 std::uint32_t filterMask, std::span<std::byte> decoded, unsigned threads)
{
    if (const std::string obstacle = decodingObstacle(pipeline, filterMask); !obstacle.empty())
        throw MRuntimeException("the chunk can't be decoded: " + obstacle);
    if (decoded.size() != pipeline.chunkBytes)
        throw MRuntimeException("a chunk of " + std::to_string(pipeline.chunkBytes) +
                                " bytes can't be decoded into " + std::to_string(decoded.size()));
    const auto steps = stepsBack(pipeline, filterMask);
    if ((steps.empty() || keepsSize(*steps.front())) && stored.size() != decoded.size())
        throw MRuntimeException("the chunk has " + std::to_string(stored.size()) + " instead of " +
                                std::to_string(decoded.size()) + " bytes");
    if (steps.empty() && !stored.empty())
        std::memcpy(decoded.data(), stored.data(), stored.size());
    image::PixelBufferPtr between;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (i + 1 == steps.size()) {
            undo(*steps[i], pipeline.elementSize, stored, decoded, threads);
        } else {
            auto next = image::PixelBuffer::allocate(decoded.size());
            const std::span<std::byte> target(next->data(), decoded.size());
            undo(*steps[i], pipeline.elementSize, stored, target, threads);
            between = std::move(next);  // frees the input of this step only after it was read
            stored = target;
        }
    }
}

}  // namespace morvend::codec
