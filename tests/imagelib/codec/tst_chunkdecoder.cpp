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

using tarvik::tests::Bytes;
using tarvik::tests::makeElements;
using tarvik::tests::Pattern;

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
    std::vector<Case> all;
    for (const unsigned size : {1U, 2U, 3U, 4U, 8U, 12U}) {
        const std::string suffix = "Of" + std::to_string(size);
        const ChunkFilter bitshuffle{BitshuffleFilter, {0, 3, size, 0, 2}};
        all.push_back({"BitshuffleLz4" + suffix, size, {bitshuffle}, encodeBitshuffle});
        all.push_back(
            {"BitshuffleLz4SmallBlocks" + suffix, size, {bitshuffle}, encodeBitshuffle, 24});
        all.push_back({"BitshuffleZstd" + suffix,
                       size,
                       {{BitshuffleFilter, {0, 3, size, 0, 3}}},
                       encodeBitshuffleZstd});
        all.push_back({"BitshuffleAlone" + suffix,
                       size,
                       {{BitshuffleFilter, {0, 3, size, 0, 0}}},
                       encodeBitshuffle});
        all.push_back({"ShuffleDeflate" + suffix,
                       size,
                       {{ShuffleFilter, {size}}, {DeflateFilter, {6}}},
                       encodeShuffleDeflate});
        all.push_back({"ShuffleLz4" + suffix,
                       size,
                       {{ShuffleFilter, {size}}, {Lz4Filter, {100}}},
                       encodeShuffleLz4});
    }
    all.push_back({"Lz4", 4, {{Lz4Filter, {}}}, encodeLz4});
    all.push_back({"Lz4SmallBlocks", 4, {{Lz4Filter, {}}}, encodeLz4, 37});
    all.push_back({"Deflate", 4, {{DeflateFilter, {1}}}, encodeDeflate});
    all.push_back({"Plain", 4, {}, encodePlain});
    return all;
}

class EveryPipeline : public testing::TestWithParam<Case> {
protected:
    /// Decodes, whether it succeeds or not, between two guards that have to stay as they are.
    static void expectNothingBeyond(const Bytes& stored, std::size_t bytes, unsigned threads)
    {
        const Bytes guard(64, std::byte(0x5a));
        Bytes all(bytes + 2 * guard.size(), guard[0]);
        try {
            decodeChunk({GetParam().filters, GetParam().elementSize, bytes}, stored, 0,
                        std::span(all).subspan(guard.size(), bytes), threads);
        } catch (const MRuntimeException&) {
            // Any other exception fails the test.
        }
        EXPECT_TRUE(std::equal(guard.begin(), guard.end(), all.begin()));
        EXPECT_TRUE(std::equal(guard.rbegin(), guard.rend(), all.rbegin()));
    }

    static Bytes decode(std::span<const std::byte> stored, std::size_t bytes, unsigned threads = 1)
    {
        Bytes decoded(bytes, std::byte(0xa5));
        decodeChunk({GetParam().filters, GetParam().elementSize, bytes}, stored, 0, decoded,
                    threads);
        return decoded;
    }
};

INSTANTIATE_TEST_SUITE_P(Table, EveryPipeline, testing::ValuesIn(cases()),
                         [](const auto& row) { return row.param.name; });

TEST_P(EveryPipeline, ComesBackAsItWasForAnyLength)
{
    const Case& c = GetParam();
    for (const std::size_t count :
         std::initializer_list<std::size_t>{0, 1, 7, 8, 9, 127, 128, 1031, 2048, 2055, 8192, 20011})
        for (const Pattern pattern : {Pattern::Noise, Pattern::Sparse, Pattern::Gaps}) {
            const Bytes original = makeElements(pattern, count, c.elementSize);
            const Bytes stored = c.encode(original, c);
            EXPECT_TRUE(decode(stored, original.size()) == original) << count << name(pattern);
            EXPECT_TRUE(decode(stored, original.size(), 3) == original) << count << name(pattern);
        }
}

TEST_P(EveryPipeline, StreamCutAnywhereIsAnError)
{
    const Case& c = GetParam();
    const Bytes original = makeElements(Pattern::Gaps, 1003, c.elementSize);
    const Bytes stored = c.encode(original, c);
    for (std::size_t cut = 0; cut < stored.size(); ++cut) {
        // A block of its own, so that the address sanitizer sees a read beyond the cut.
        const Bytes shortened(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_THROW(decode(shortened, original.size()), MRuntimeException) << cut;
    }
}

TEST_P(EveryPipeline, ChangedBytesNeverReachBeyondTheirBuffers)
{
    const Case& c = GetParam();
    const Bytes original = makeElements(Pattern::Sparse, 1003, c.elementSize);
    const Bytes stored = c.encode(original, c);
    for (std::size_t at = 0; at < stored.size(); ++at)
        for (const unsigned flip : {0x01U, 0x80U, 0xffU}) {
            Bytes damaged = stored;
            damaged[at] ^= static_cast<std::byte>(flip);
            expectNothingBeyond(damaged, original.size(), flip == 1 ? 2 : 1);
        }
}

TEST_P(EveryPipeline, ChunkOfAnotherSizeIsAnError)
{
    const Case& c = GetParam();
    const Bytes original = makeElements(Pattern::Sparse, 1000, c.elementSize);
    const Bytes stored = c.encode(original, c);
    for (const std::size_t bytes : {original.size() - c.elementSize, original.size() + 8})
        EXPECT_THROW(decode(stored, bytes), MRuntimeException) << bytes;
}

struct Lie {
    std::string name;
    Bytes stored;
    std::string reason;
};

Bytes bytesOf(std::initializer_list<unsigned> values)
{
    Bytes bytes;
    for (const unsigned value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

class LyingChunk : public testing::TestWithParam<Lie> {};

// Chunks of filter 32008 with 16 elements of 4 bytes, hence 64 (0x40) bytes.
INSTANTIATE_TEST_SUITE_P(
    Table, LyingChunk,
    testing::Values(
        Lie{"Empty", {}, "the chunk has 0 bytes, fewer than its head"},
        Lie{"AnnouncesMore", bytesOf({0xff, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0, 0x40}),
            "the chunk announces 18374686479671623744 instead of 64 bytes"},
        Lie{"OddBlockLength", bytesOf({0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0, 0x21}),
            "blocks of 33 bytes, no multiple of 32"},
        Lie{"BlockBeyondTheEnd",
            bytesOf({0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0, 0x40, 0xff, 0xff, 0xff, 0xff, 0}),
            "block 0 of the chunk ends after 1 of 4294967295 bytes"},
        Lie{"SecondBlockMissing", bytesOf({0, 0,  0,    0, 0, 0, 0, 0x40, 0, 0, 0, 0x20, 0, 0,
                                           0, 11, 0x1f, 0, 1, 0, 7, 0x50, 0, 0, 0, 0,    0}),
            "block 1 of the chunk is missing"},
        Lie{"EmptyBlock", bytesOf({0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0, 0x40, 0, 0, 0, 0}),
            "block 0 of the chunk is damaged (LZ4)"}),
    [](const auto& row) { return row.param.name; });

TEST_P(LyingChunk, IsToldWithItsReason)
{
    Bytes decoded(64);
    const ChunkPipeline pipeline{{{BitshuffleFilter, {0, 3, 4, 0, 2}}}, 4, decoded.size()};
    for (const unsigned threads : {1U, 4U}) {
        try {
            decodeChunk(pipeline, GetParam().stored, 0, decoded, threads);
            ADD_FAILURE() << "no exception";
        } catch (const MRuntimeException& failure) {
            EXPECT_THAT(failure.what(), testing::HasSubstr(GetParam().reason));
        }
    }
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
    for (const unsigned threads : {1U, 2U, 4U}) {
        try {
            bitshuffleDecode(stored, 4, BlockPacking::Lz4, 0, decoded, threads);
            ADD_FAILURE() << "no exception";
        } catch (const MRuntimeException& failure) {
            EXPECT_STREQ(failure.what(), "block 700 of the chunk is damaged (LZ4)") << threads;
        }
    }
}

TEST(ChunkDecoder, ImagesLargerThanTheCachesComeBackAsTheyWere)
{
    const Bytes original = makeElements(Pattern::Gaps, (std::size_t(33) << 18) + 13, 4);
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

struct Obstacle {
    std::string name;
    std::vector<ChunkFilter> filters;
    std::string text;
};

TEST(ChunkDecoder, ObstaclesAreNamed)
{
    const std::vector<Obstacle> table = {
        {"known", {{ShuffleFilter, {4}}, {BitshuffleFilter, {0, 3, 4, 0, 2}}}, ""},
        {"zstd", {{32015, {}}}, "filter 32015 (zstd) is not known"},
        {"unheard of", {{40000, {}}}, "filter 40000 is not known"},
        {"packing",
         {{BitshuffleFilter, {0, 3, 4, 0, 7}}},
         "filter 32008 (bitshuffle) has the unknown packing 7"},
        {"element size",
         {{BitshuffleFilter, {0, 3, 0xffffffff, 0, 2}}},
         "filter 32008 (bitshuffle) has elements of 4294967295 bytes"},
        {"blocks",
         {{BitshuffleFilter, {0, 3, 4, 12, 2}}},
         "filter 32008 (bitshuffle) has blocks of 12 elements, no multiple of 8"},
        {"packed twice",
         {{Lz4Filter, {}}, {DeflateFilter, {6}}},
         "filter 32004 (LZ4) stands before another filter"}};
    for (const Obstacle& row : table) {
        const ChunkPipeline pipeline{row.filters, 4, 64};
        EXPECT_EQ(decodingObstacle(pipeline), row.text) << row.name;
        EXPECT_EQ(canDecode(pipeline), row.text.empty()) << row.name;
        Bytes decoded(64);
        if (!row.text.empty()) {
            EXPECT_THROW(decodeChunk(pipeline, decoded, 0, decoded), MRuntimeException) << row.name;
        }
    }
}

}  // namespace
}  // namespace morvend::codec
