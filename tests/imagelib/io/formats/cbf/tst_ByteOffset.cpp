// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte-offset streams: by hand, at random, cut short, and with every vector instruction set.
#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/cbf/ByteOffset.h"
#include "tests/support/EveryTarget.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace tarvik::tests {

using namespace morvend;
using namespace morvend::imglib;

namespace {

std::vector<std::byte> bytes(std::initializer_list<int> values)
{
    std::vector<std::byte> result;
    for (const int value : values)
        result.push_back(static_cast<std::byte>(value));
    return result;
}

template <class T>
std::span<std::byte> bytesOf(std::vector<T>& values)
{
    return std::as_writable_bytes(std::span(values));
}

struct PackCase {
    const char* name;
    std::vector<std::byte> packed;
    std::vector<std::int32_t> pixels;
};

constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();

const PackCase PackCases[] = {
    {"small steps", bytes({0x01, 0xff, 0x7f, 0x81}), {1, 0, 127, 0}},
    {"gap pixels", bytes({0xfe, 0x01, 0x01}), {-2, -1, 0}},
    {"two bytes", bytes({0x80, 0x80, 0x00, 0x80, 0x80, 0xff}), {128, 0}},
    {"two bytes at their ends", bytes({0x80, 0xff, 0x7f, 0x80, 0x01, 0x80}), {32767, 0}},
    {"escape bytes inside a difference", bytes({0x80, 0x80, 0x80, 0x01}), {-32640, -32639}},
    {"four bytes",
     bytes({0x80, 0, 0x80, 0, 0x80, 0, 0, 0x80, 0, 0x80, 0, 0x80, 0xff, 0xff}),
     {32768, 0}},
    {"wraps around",
     bytes({0x80, 0x00, 0x80, 0xff, 0xff, 0xff, 0x7f, 0x01, 0xff}),
     {Most, Least, Most}},
    {"eight bytes",
     bytes({0x80, 0, 0x80, 0, 0, 0, 0x80, 0, 0, 0, 0x80, 0xff, 0xff, 0xff, 0xff}),
     {Least}},
};

}  // namespace

TEST(ByteOffset, UnpacksAndPacksAndGivesThePixelsBeforeACut)
{
    for (const PackCase& row : PackCases) {
        SCOPED_TRACE(row.name);
        std::vector<std::int32_t> pixels(row.pixels.size());
        const UnpackedPixels whole = unpackByteOffset(row.packed, 4, bytesOf(pixels));
        EXPECT_EQ(whole.pixels, row.pixels.size());
        EXPECT_EQ(whole.bytes, row.packed.size());
        EXPECT_EQ(pixels, row.pixels);
        EXPECT_EQ(packByteOffset(bytesOf(pixels), 4, true), row.packed);
        for (std::size_t size = 0; size < row.packed.size(); ++size) {
            const auto cut = std::span(row.packed).first(size);
            const UnpackedPixels part = unpackByteOffset(cut, 4, bytesOf(pixels));
            EXPECT_LT(part.pixels, row.pixels.size());
            EXPECT_LE(part.bytes, size);
            EXPECT_TRUE(std::ranges::equal(std::span(pixels).first(part.pixels),
                                           std::span(row.pixels).first(part.pixels)));
        }
    }
}

TEST(ByteOffset, StopsAtTheLastPixelAndKeepsTheRest)
{
    std::vector<std::int16_t> pixels(2);
    const UnpackedPixels unpacked = unpackByteOffset(bytes({1, 1, 1, 1}), 2, bytesOf(pixels));
    EXPECT_EQ(unpacked.pixels, 2U);
    EXPECT_EQ(unpacked.bytes, 2U);
}

TEST(ByteOffset, SumsWrapAroundAtTheWidthOfThePixel)
{
    std::vector<std::uint8_t> narrow(3);
    unpackByteOffset(bytes({0x80, 0xff, 0x00, 0x01, 0xff}), 1, bytesOf(narrow));
    EXPECT_EQ(narrow, (std::vector<std::uint8_t>{255, 0, 255}));
}

namespace {

/// Random pixels whose differences need all widths, in the proportions given by `kind`.
template <class T>
std::vector<T> randomPixels(std::size_t count, int kind, std::mt19937_64& random)
{
    using Limits = std::numeric_limits<T>;
    std::vector<T> pixels(count);
    for (auto& pixel : pixels) {
        const auto bits = random();
        const std::uint64_t values[] = {
            bits & 3,                                                 // low background
            3000 + (bits & 127) + (bits >> 20 & 127),                 // one escape in ten
            (bits & 63) == 0 ? bits >> 8 : bits >> 8 & 1,             // now and then any value
            (bits & 1) ? std::uint64_t(0x8080) : bits >> 8 & 0x7fff,  // escapes inside differences
            (bits & 1) ? static_cast<std::uint64_t>(Limits::max())
                       : static_cast<std::uint64_t>(Limits::min()) + (bits >> 1 & 1),
            bits};
        pixel = static_cast<T>(values[kind]);
    }
    return pixels;
}

template <class T>
class ByteOffsetOfType : public testing::Test {};
using Types = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                             std::uint32_t, long long, unsigned long long>;
TYPED_TEST_SUITE(ByteOffsetOfType, Types);

/// Expects plain code and that of the instruction set to unpack the same. The memory of images
/// begins at a multiple of 64 bytes, as streaming needs it.
template <class T>
void expectAsPlain(std::span<const std::byte> packed, int width, int height)
{
    MImage images[2];
    UnpackedPixels done[2];
    for (int i : {0, 1}) {
        images[i] = MImage(width, height, datatypes::typeOf<T>, datatypes::bitsOf<T>);
        const std::span target(static_cast<std::byte*>(images[i].data()), images[i].dataSize());
        done[i] = (i ? unpackByteOffset : unpackByteOffsetPlain)(packed, sizeof(T), target);
    }
    ASSERT_EQ(done[0].pixels, done[1].pixels);
    ASSERT_EQ(done[0].bytes, done[1].bytes);
    ASSERT_EQ(std::memcmp(images[0].cdata(), images[1].cdata(), done[0].pixels * sizeof(T)), 0);
}

}  // namespace

TYPED_TEST(ByteOffsetOfType, RoundTripsWithEachInstructionSet)
{
    using T = TypeParam;
    forEveryTarget([] {
        std::mt19937_64 random(1);
        for (int kind = 0; kind < 6; ++kind)
            for (const std::size_t count :
                 {0u, 1u, 15u, 16u, 63u, 64u, 65u, 127u, 128u, 129u, 200u, 4000u}) {
                auto pixels = randomPixels<T>(count, kind, random);
                const auto packed = packByteOffset(bytesOf(pixels), sizeof(T), std::is_signed_v<T>);
                std::vector<T> unpacked(count);
                const UnpackedPixels done = unpackByteOffset(packed, sizeof(T), bytesOf(unpacked));
                ASSERT_EQ(done.pixels, count);
                ASSERT_EQ(done.bytes, packed.size());
                ASSERT_EQ(unpacked, pixels) << kind << ' ' << count;
                if (count == 0)
                    continue;
                expectAsPlain<T>(packed, static_cast<int>(count), 1);
                // Begun and ended anywhere it is another stream, which may end inside a value.
                for (int cut = 0; cut < 8; ++cut) {
                    const auto rest = std::span(packed).last(random() % packed.size());
                    expectAsPlain<T>(rest.first(random() % (rest.size() + 1)),
                                     static_cast<int>(count), 1);
                }
            }
    });
}

// Large outputs go past the caches, straight where there is no escape for a while, else by way of a
// buffer, whole and cut short alike.
TEST(ByteOffset, LargeOutputsEqualPlainOnes)
{
    std::mt19937_64 random(3);
    std::vector<std::byte> packed(10'000'000);
    constexpr std::size_t Period = 99'991;
    for (std::size_t i = 0; i < packed.size(); ++i)
        packed[i] = i >= Period         ? packed[i - Period]
                    : i % 10'007 > 2000 ? static_cast<std::byte>(random() & 0x7f)
                    : i % 97 == 0       ? std::byte(0x80)
                                        : static_cast<std::byte>(random() & 0xff);
    forEveryTarget([&] {
        for (const std::size_t left : {packed.size(), std::size_t(9'000'001), std::size_t(4'000)})
            expectAsPlain<std::int32_t>(std::span(packed).first(left), 3000, 3100);
    });
}

}  // namespace tarvik::tests
