// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Our own LZ4 decoder agrees with liblz4 on every block, sound or damaged, and keeps to its memory.
#include "imagelib/codec/Lz4Block.h"
#include "tests/imagelib/codec/TestData.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <random>
#include <string>
#include <vector>

namespace morvend::codec {
namespace {

using tarvik::tests::Bytes;

constexpr std::byte Untouched{0xa5};

/// Sequences as a writer of LZ4 might choose them: literals, offset, length of the match.
struct Sequence {
    std::size_t literals, offset, match;
};

void putLength(Bytes& to, std::size_t length)
{
    for (; length >= 255; length -= 255)
        to.push_back(std::byte(255));
    to.push_back(static_cast<std::byte>(length));
}

Bytes packed(const std::vector<Sequence>& sequences)
{
    Bytes out;
    unsigned value = 1;
    for (const Sequence& each : sequences) {
        const std::size_t match = each.match ? each.match - 4 : 0;
        out.push_back(static_cast<std::byte>(std::min<std::size_t>(each.literals, 15) << 4 |
                                             std::min<std::size_t>(match, 15)));
        if (each.literals >= 15)
            putLength(out, each.literals - 15);
        for (std::size_t i = 0; i < each.literals; ++i)
            out.push_back(static_cast<std::byte>(value++ * 37 >> 2 & 0xff));
        if (each.match == 0)
            continue;
        out.push_back(static_cast<std::byte>(each.offset & 0xff));
        out.push_back(static_cast<std::byte>(each.offset >> 8));
        if (match >= 15)
            putLength(out, match - 15);
    }
    return out;
}

/// Unpacks with `margin` bytes around, in memory of exactly that size; false when it is refused.
bool unpack(const Bytes& block, std::size_t bytes, std::size_t margin, Bytes& out)
{
    Bytes in;
    in.reserve(block.size() + margin);
    in.insert(in.end(), block.begin(), block.end());
    in.insert(in.end(), margin, Untouched);
    out.assign(bytes + margin + 1, Untouched);
    const bool sound = lz4PlanesUnpacker()(std::span(in).first(block.size()),
                                           std::span(out).first(bytes), {margin, margin});
    EXPECT_EQ(out.back(), Untouched);
    out.resize(bytes);
    return sound;
}

constexpr std::size_t Margins[] = {0, 1, 63, 64, 128, 300};

/// Both decoders on a block.
void compare(const Bytes& block, std::size_t bytes, const std::string& what)
{
    Bytes expected(bytes), out;
    const bool sound = lz4Block(block, expected);
    for (const std::size_t margin : Margins) {
        EXPECT_EQ(unpack(block, bytes, margin, out), sound) << what << ", margin " << margin;
        EXPECT_TRUE(!sound || out == expected) << what << ", margin " << margin;
    }
}

TEST(Lz4Planes, EveryOffsetAndLengthAgreesWithTheLibrary)
{
    for (const std::size_t offset :
         std::initializer_list<std::size_t>{1, 2, 3, 7, 8, 21, 31, 32, 33, 63, 64, 65, 127, 256})
        for (const std::size_t match : std::initializer_list<std::size_t>{
                 4, 18, 19, 63, 64, 65, 128, 129, 193, 273, 274, 529, 1000})
            for (const std::size_t literals :
                 std::initializer_list<std::size_t>{0, 1, 14, 15, 64, 65, 269, 270}) {
                const std::size_t first = 270;
                compare(packed({{first, offset, match}, {literals, offset, 20}, {12, 0, 0}}),
                        first + match + literals + 20 + 12,
                        "offset " + std::to_string(offset) + ", match " + std::to_string(match) +
                            ", literals " + std::to_string(literals));
            }
}

TEST(Lz4Planes, DamagedBlocksAreRefused)
{
    // A match that reaches before the block, one beyond the end, no last literals, too few and too
    // many bytes. A match of offset 0 is refused by our decoder alone, where the processor runs it.
    const Bytes good = packed({{20, 5, 100}, {12, 0, 0}});
    const struct {
        const char* what;
        Bytes block;
        std::size_t bytes;
    } rows[] = {{"offset beyond the begin", packed({{20, 21, 100}, {12, 0, 0}}), 132},
                {"match beyond the end", packed({{20, 5, 400}, {12, 0, 0}}), 132},
                {"match at the end", packed({{20, 5, 112}}), 132},
                {"one byte more wanted", good, 133},
                {"one byte less wanted", good, 131},
                {"nothing", {}, 132},
                {"bytes behind the end", packed({{20, 5, 100}, {12, 5, 4}, {8, 0, 0}}), 132}};
    Bytes out;
    for (const auto& row : rows)
        for (const std::size_t margin : Margins)
            EXPECT_FALSE(unpack(row.block, row.bytes, margin, out)) << row.what << ' ' << margin;
    Bytes library(132);
    const Bytes zero = packed({{20, 0, 100}, {12, 0, 0}});
    EXPECT_TRUE(!unpack(zero, 132, 0, out) || lz4Block(zero, library));
    for (std::size_t cut = 0; cut < good.size(); ++cut)
        compare({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(cut)}, 132,
                "cut at " + std::to_string(cut));
}

TEST(Lz4Planes, ChangedBytesKeepToTheirMemory)
{
    std::mt19937 random(5);
    int sound = 0;
    for (int round = 0; round < 6000; ++round) {
        const std::vector<Sequence> sequences{
            {random() % 90 + 1, 1 + random() % 5, 4 + random() % 400},
            {random() % 3, 1 + random() % 90, 4 + random() % 90},
            {random() % 20, 1 + random() % 300, 4 + random() % 300},
            {5 + random() % 30, 0, 0}};
        Bytes block = packed(sequences);
        std::size_t bytes = random() % 8 == 0 ? 1 : 0;
        for (const Sequence& each : sequences)
            bytes += each.literals + each.match;
        for (std::size_t changes = random() % 3; changes > 0; --changes)
            block[random() % block.size()] = static_cast<std::byte>(random() & 0xff);
        Bytes out, expected(bytes);
        // The library refuses some ends of a block that no writer makes, and lets offset 0 pass.
        const bool both =
            unpack(block, bytes, random() % 2 * 128, out) && lz4Block(block, expected);
        ASSERT_TRUE(!both || out == expected) << round;
        sound += both;
    }
    EXPECT_GT(sound, 1000);
}

}  // namespace
}  // namespace morvend::codec
