// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Chunks of all filters come back as they were, and damaged ones end in an exception.
#include "imagelib/codec/Bitshuffle.h"
#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/codec/Deflate.h"
#include "imagelib/codec/Lz4.h"
#include "imagelib/codec/Shuffle.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/PixelBuffer.h"
#include "tests/imagelib/codec/TestData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zstd.h>

namespace morvend::codec {
namespace {

using namespace tarvik::tests;

/// A pipeline with the encoder that writes its chunks.
struct Case {
    std::string name;
    std::size_t elementSize;
    std::vector<ChunkFilter> filters;
    Bytes (*encode)(const Bytes& decoded, const Case& c);
    std::size_t blockElements = 0;
};

Bytes shuffled(const Bytes& decoded, std::size_t elementSize)
{
    Bytes out(decoded.size());
    byteShuffle(decoded, elementSize, out);
    return out;
}

Bytes encodeBitshuffle(const Bytes& decoded, const Case& c)
{
    return bitshuffleEncode(decoded, c.elementSize,
                            static_cast<BlockPacking>(c.filters[0].values[4]), c.blockElements);
}
Bytes encodeLz4(const Bytes& decoded, const Case& c)
{
    return lz4Encode(decoded, c.blockElements ? c.blockElements : Lz4BlockBytes);
}
Bytes encodeDeflate(const Bytes& decoded, const Case&) { return deflate(decoded, 1); }
Bytes encodeShuffleDeflate(const Bytes& decoded, const Case& c)
{
    return deflate(shuffled(decoded, c.elementSize));
}
Bytes encodeShuffleLz4(const Bytes& decoded, const Case& c)
{
    return lz4Encode(shuffled(decoded, c.elementSize), 100);
}
Bytes encodePlain(const Bytes& decoded, const Case&) { return decoded; }

/// zstd blocks by way of the plain bit shuffle of each block.
Bytes encodeBitshuffleZstd(const Bytes& decoded, const Case& c)
{
    const std::size_t block = defaultBlockElements(c.elementSize) * c.elementSize;
    const auto planes = bitshuffleEncode(decoded, c.elementSize, BlockPacking::None);
    const std::size_t end = decoded.size() - decoded.size() % (8 * c.elementSize);
    Bytes out;
    const auto number = [&out](std::size_t value, int bytes) {
        while (bytes-- > 0)
            out.push_back(static_cast<std::byte>(value >> (8 * bytes) & 0xff));
    };
    number(decoded.size(), 8);
    number(block, 4);
    for (std::size_t at = 0; at < end; at += block) {
        const std::size_t bytes = std::min(block, end - at);
        Bytes packed(ZSTD_compressBound(bytes));
        packed.resize(ZSTD_compress(packed.data(), packed.size(), planes.data() + at, bytes, 1));
        number(packed.size(), 4);
        out.insert(out.end(), packed.begin(), packed.end());
    }
    out.insert(out.end(), planes.begin() + static_cast<std::ptrdiff_t>(end), planes.end());
    return out;
}

std::vector<Case> cases()
{
    std::vector<Case> all{{"Lz4", 4, {{Lz4Filter, {}}}, encodeLz4},
                          {"Lz4SmallBlocks", 4, {{Lz4Filter, {}}}, encodeLz4, 37},
                          {"Deflate", 4, {{DeflateFilter, {1}}}, encodeDeflate},
                          {"Plain", 4, {}, encodePlain}};
    for (const unsigned size : {1U, 2U, 3U, 4U, 8U, 12U}) {
        const auto add = [&](const char* name, std::vector<ChunkFilter> filters, auto encode,
                             std::size_t blockElements = 0) {
            all.push_back({name + std::to_string(size), size, filters, encode, blockElements});
        };
        const auto bitshuffle = [size](unsigned packing) {
            return std::vector<ChunkFilter>{{BitshuffleFilter, {0, 3, size, 0, packing}}};
        };
        add("BitshuffleLz4Of", bitshuffle(2), encodeBitshuffle);
        add("BitshuffleLz4SmallBlocksOf", bitshuffle(2), encodeBitshuffle, 24);
        add("BitshuffleZstdOf", bitshuffle(3), encodeBitshuffleZstd);
        add("BitshuffleAloneOf", bitshuffle(0), encodeBitshuffle);
        add("ShuffleDeflateOf", {{ShuffleFilter, {size}}, {DeflateFilter, {6}}},
            encodeShuffleDeflate);
        add("ShuffleLz4Of", {{ShuffleFilter, {size}}, {Lz4Filter, {100}}}, encodeShuffleLz4);
    }
    return all;
}

class EveryPipeline : public testing::TestWithParam<Case> {
protected:
    const Case& c = GetParam();

    void decode(std::span<const std::byte> stored, std::span<std::byte> to, unsigned threads = 1)
    {
        decodeChunk({c.filters, c.elementSize, to.size()}, stored, 0, to, threads);
    }
};

INSTANTIATE_TEST_SUITE_P(Table, EveryPipeline, testing::ValuesIn(cases()),
                         [](const auto& row) { return row.param.name; });

TEST_P(EveryPipeline, ComesBackAsItWasForAnyLength)
{
    for (const unsigned count : {0U, 1U, 7U, 8U, 9U, 127U, 128U, 1031U, 2048U, 2055U, 9001U})
        for (const Pattern pattern : Patterns) {
            const Bytes original = makeElements(pattern, count, c.elementSize);
            const Bytes stored = c.encode(original, c);
            for (const unsigned threads : {1U, 3U}) {
                Bytes decoded(original.size(), std::byte(0xa5));
                decode(stored, decoded, threads);
                EXPECT_TRUE(decoded == original) << count << ' ' << int(pattern);
            }
        }
}

TEST_P(EveryPipeline, StreamCutAnywhereOrOfAnotherSizeIsAnError)
{
    const Bytes original = makeElements(Pattern::Gaps, 203, c.elementSize);
    const Bytes stored = c.encode(original, c);
    Bytes decoded(original.size());
    for (std::size_t cut = 0; cut < stored.size(); ++cut) {
        // A block of its own, so that the address sanitizer sees a read beyond the cut.
        const Bytes shortened(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_THROW(decode(shortened, decoded), MRuntimeException) << cut;
    }
    for (const std::size_t bytes : {original.size() - c.elementSize, original.size() + 8}) {
        Bytes other(bytes);
        EXPECT_THROW(decode(stored, other), MRuntimeException) << bytes;
    }
}

TEST_P(EveryPipeline, ChangedBytesNeverReachBeyondTheirBuffers)
{
    const Bytes original = makeElements(Pattern::Sparse, 203, c.elementSize);
    const Bytes stored = c.encode(original, c);
    const Bytes guard(64, std::byte(0x5a));
    for (std::size_t at = 0; at < stored.size(); ++at)
        for (const unsigned flip : {0x01U, 0x80U, 0xffU}) {
            Bytes damaged = stored;
            damaged[at] ^= static_cast<std::byte>(flip);
            Bytes all(original.size() + 2 * guard.size(), guard[0]);
            try {
                decode(damaged, std::span(all).subspan(guard.size(), original.size()),
                       flip == 1 ? 2 : 1);
            } catch (const MRuntimeException&) {
                // Any other exception fails the test.
            }
            EXPECT_TRUE(std::equal(guard.begin(), guard.end(), all.begin()));
            EXPECT_TRUE(std::equal(guard.rbegin(), guard.rend(), all.rbegin()));
        }
}

TEST(ChunkDecoder, LiesOfAChunkAreToldWithTheirReason)
{
    // Chunks of filter 32008 with 16 elements of 4 bytes, hence 64 (0x40) bytes.
    const std::string head(7, '\0'), zeros(3, '\0');
    const std::pair<std::string, const char*> lies[] = {
        {"", "the chunk has 0 bytes, fewer than its head"},
        {'\xff' + head.substr(1) + '@' + zeros + '@',
         "the chunk announces 18374686479671623744 instead of 64 bytes"},
        {head + '@' + zeros + '!', "blocks of 33 bytes, no multiple of 32"},
        {head + '@' + zeros + "@\xff\xff\xff\xff" + zeros[0],
         "block 0 of the chunk ends after 1 of 4294967295 bytes"},
        {head + '@' + zeros + ' ' + zeros + "\x0b\x1f" + zeros[0] + '\1' + zeros[0] + "\7P" +
             zeros + zeros.substr(1),
         "block 1 of the chunk is missing"},
        {head + '@' + zeros + '@' + zeros + zeros[0], "block 0 of the chunk is damaged (LZ4)"}};
    Bytes decoded(64);
    const ChunkPipeline pipeline{{{BitshuffleFilter, {0, 3, 4, 0, 2}}}, 4, decoded.size()};
    for (const auto& [stored, reason] : lies)
        for (const unsigned threads : {1U, 4U})
            EXPECT_THAT(
                [&] {
                    decodeChunk(pipeline, std::as_bytes(std::span(stored)), 0, decoded, threads);
                },
                testing::ThrowsMessage<MRuntimeException>(testing::HasSubstr(reason)));
}

TEST(ChunkDecoder, FirstDamagedBlockIsToldForAnyNumberOfThreads)
{
    const Bytes original = makeElements(Pattern::Noise, 200000, 4);
    Bytes stored = bitshuffleEncode(original, 4, BlockPacking::Lz4, 128);
    // Noise doesn't shrink: every block takes the same room. Damage the tokens of two of them.
    const std::size_t length = 4 + (std::to_integer<std::size_t>(stored[14]) << 8 |
                                    std::to_integer<std::size_t>(stored[15]));
    ASSERT_EQ(stored[12 + 3], stored[12 + length + 3]);
    for (const std::size_t block : {1200U, 700U})
        stored[12 + block * length + 4] = std::byte(0x0f);
    Bytes decoded(original.size());
    for (const unsigned threads : {1U, 2U, 4U})
        EXPECT_THAT(
            [&] { bitshuffleDecode(stored, 4, BlockPacking::Lz4, 0, decoded, threads); },
            testing::ThrowsMessage<MRuntimeException>("block 700 of the chunk is damaged (LZ4)"));
}

TEST(ChunkDecoder, ImagesLargerThanTheCachesComeBackAsTheyWere)
{
    const Bytes tile = makeElements(Pattern::Gaps, 100003, 4);
    Bytes original((std::size_t(33) << 20) + 52);
    for (std::size_t i = 0; i < original.size(); ++i)
        original[i] = tile[i % tile.size()];
    const Bytes stored = bitshuffleEncode(original, 4);
    const auto decoded = image::PixelBuffer::allocate(original.size());
    for (const std::size_t offset : {0U, 16U})  // lines of the cache whole, and not
        for (const unsigned threads : {1U, 2U}) {
            const std::span<std::byte> to(decoded->data() + offset, original.size());
            std::fill(to.begin(), to.end(), std::byte(0xa5));
            bitshuffleDecode(stored, 4, BlockPacking::Lz4, 0, to, threads);
            EXPECT_TRUE(std::equal(to.begin(), to.end(), original.begin())) << offset << threads;
        }
}

TEST(ChunkDecoder, FilterMaskLeavesFiltersOut)
{
    const Bytes original = makeElements(Pattern::Sparse, 1000, 4);
    const ChunkPipeline pipeline{{{ShuffleFilter, {4}}, {DeflateFilter, {6}}}, 4, original.size()};
    Bytes decoded(original.size());
    decodeChunk(pipeline, original, 0b11, decoded);
    EXPECT_EQ(decoded, original);
    decodeChunk(pipeline, deflate(original), 0b01, decoded);
    EXPECT_EQ(decoded, original);
    decodeChunk(pipeline, shuffled(original, 4), 0b10, decoded);
    EXPECT_EQ(decoded, original);
}

TEST(ChunkDecoder, ObstaclesAreNamed)
{
    const std::pair<std::vector<ChunkFilter>, const char*> table[] = {
        {{{ShuffleFilter, {4}}, {BitshuffleFilter, {0, 3, 4, 0, 2}}}, ""},
        {{{32015, {}}}, "filter 32015 (zstd) is not known"},
        {{{40000, {}}}, "filter 40000 is not known"},
        {{{BitshuffleFilter, {0, 3, 4, 0, 7}}},
         "filter 32008 (bitshuffle) has the unknown packing 7"},
        {{{BitshuffleFilter, {0, 3, 0xffffffff, 0, 2}}},
         "filter 32008 (bitshuffle) has elements of 4294967295 bytes"},
        {{{BitshuffleFilter, {0, 3, 4, 12, 2}}},
         "filter 32008 (bitshuffle) has blocks of 12 elements, no multiple of 8"},
        {{{Lz4Filter, {}}, {DeflateFilter, {6}}},
         "filter 32004 (LZ4) stands before another filter"}};
    for (const auto& [filters, text] : table) {
        const ChunkPipeline pipeline{filters, 4, 64};
        EXPECT_EQ(decodingObstacle(pipeline), text);
        EXPECT_EQ(canDecode(pipeline), *text == '\0') << text;
        Bytes decoded(64);
        if (*text) {
            EXPECT_THROW(decodeChunk(pipeline, decoded, 0, decoded), MRuntimeException) << text;
        }
    }
}

}  // namespace
}  // namespace morvend::codec
