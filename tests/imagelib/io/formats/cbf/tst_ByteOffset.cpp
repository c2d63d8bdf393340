// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte-offset streams: by hand, at random, cut short, and with every vector instruction set.
#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/cbf/ByteOffset.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using namespace morvend::imglib;

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

class ByteOffset : public testing::TestWithParam<PackCase> {};

TEST_P(ByteOffset, UnpacksAndPacks)
{
    const auto& row = GetParam();
    std::vector<std::int32_t> pixels(row.pixels.size());
    const UnpackedPixels unpacked = unpackByteOffset(row.packed, 4, bytesOf(pixels));
    EXPECT_EQ(unpacked.pixels, row.pixels.size());
    EXPECT_EQ(unpacked.bytes, row.packed.size());
    EXPECT_EQ(pixels, row.pixels);
    EXPECT_EQ(packByteOffset(bytesOf(pixels), 4, true), row.packed);
}

TEST_P(ByteOffset, CutAnywhereGivesThePixelsBefore)
{
    const auto& row = GetParam();
    std::vector<std::int32_t> pixels(row.pixels.size());
    for (std::size_t size = 0; size < row.packed.size(); ++size) {
        const std::vector<std::byte> cut(row.packed.begin(),
                                         row.packed.begin() + static_cast<std::ptrdiff_t>(size));
        const UnpackedPixels unpacked = unpackByteOffset(cut, 4, bytesOf(pixels));
        EXPECT_LT(unpacked.pixels, row.pixels.size());
        EXPECT_LE(unpacked.bytes, size);
        EXPECT_TRUE(std::equal(pixels.begin(),
                               pixels.begin() + static_cast<std::ptrdiff_t>(unpacked.pixels),
                               row.pixels.begin()));
    }
}

constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Table, ByteOffset,
    testing::Values(
        PackCase{"SmallSteps", bytes({0x01, 0xff, 0x7f, 0x81}), {1, 0, 127, 0}},
        PackCase{"GapPixels", bytes({0xfe, 0x01, 0x01}), {-2, -1, 0}},
        PackCase{"TwoBytes", bytes({0x80, 0x80, 0x00, 0x80, 0x80, 0xff}), {128, 0}},
        PackCase{"TwoBytesAtTheirEnds", bytes({0x80, 0xff, 0x7f, 0x80, 0x01, 0x80}), {32767, 0}},
        PackCase{"EscapeBytesInsideADifference", bytes({0x80, 0x80, 0x80, 0x01}), {-32640, -32639}},
        PackCase{"FourBytes",
                 bytes({0x80, 0x00, 0x80, 0x00, 0x80, 0x00, 0x00, 0x80, 0x00, 0x80, 0x00, 0x80,
                        0xff, 0xff}),
                 {32768, 0}},
        PackCase{"WrapsAround",
                 bytes({0x80, 0x00, 0x80, 0xff, 0xff, 0xff, 0x7f, 0x01, 0xff}),
                 {Most, Least, Most}},
        PackCase{"EightBytes",
                 bytes({0x80, 0x00, 0x80, 0x00, 0x00, 0x00, 0x80, 0x00, 0x00, 0x00, 0x80, 0xff,
                        0xff, 0xff, 0xff}),
                 {Least}}),
    [](const auto& row) { return row.param.name; });

TEST(ByteOffsetStream, StopsAtTheLastPixelAndKeepsTheRest)
{
    std::vector<std::int16_t> pixels(2);
    const UnpackedPixels unpacked = unpackByteOffset(bytes({1, 1, 1, 1}), 2, bytesOf(pixels));
    EXPECT_EQ(unpacked.pixels, 2U);
    EXPECT_EQ(unpacked.bytes, 2U);
}

TEST(ByteOffsetStream, SumsWrapAroundAtTheWidthOfThePixel)
{
    std::vector<std::uint8_t> narrow(3);
    unpackByteOffset(bytes({0x80, 0xff, 0x00, 0x01, 0xff}), 1, bytesOf(narrow));
    EXPECT_EQ(narrow, (std::vector<std::uint8_t>{255, 0, 255}));
}

/// Runs a test body once for every instruction set that this processor has.
template <class Body>
void withEachTarget(Body&& body)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        SCOPED_TRACE(hwy::TargetName(target));
        body();
        hwy::SetSupportedTargetsForTest(0);
    }
}

/// Random pixels whose differences need all widths, in the proportions given by `kind`.
template <class T>
std::vector<T> randomPixels(std::size_t count, int kind, std::mt19937_64& random)
{
    std::vector<T> pixels(count);
    for (auto& pixel : pixels) {
        const auto bits = random();
        switch (kind) {
        case 0:  // low background
            pixel = static_cast<T>(bits & 3);
            break;
        case 1:  // one escape in ten
            pixel = static_cast<T>(3000 + (bits & 127) + (bits >> 20 & 127));
            break;
        case 2:  // now and then any value
            pixel = static_cast<T>((bits & 63) == 0 ? bits >> 8 : bits >> 8 & 1);
            break;
        case 3:  // differences of two bytes everywhere, many of them with escape bytes inside
            pixel = static_cast<T>((bits & 1) ? 0x8080 : bits >> 8 & 0x7fff);
            break;
        case 4:  // extremes
            pixel = (bits & 1) ? std::numeric_limits<T>::max()
                               : static_cast<T>(std::numeric_limits<T>::min() + T(bits >> 1 & 1));
            break;
        default:
            pixel = static_cast<T>(bits);
        }
    }
    return pixels;
}

constexpr std::size_t Counts[] = {0, 1, 15, 16, 63, 64, 65, 127, 128, 129, 200, 1000, 20000};

template <class T>
class ByteOffsetOfType : public testing::Test {};
using Types = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                             std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(ByteOffsetOfType, Types);

TYPED_TEST(ByteOffsetOfType, RoundTripsWithEachInstructionSet)
{
    using T = TypeParam;
    withEachTarget([] {
        std::mt19937_64 random(1);
        for (int kind = 0; kind < 6; ++kind) {
            for (const std::size_t count : Counts) {
                auto pixels = randomPixels<T>(count, kind, random);
                const auto packed = packByteOffset(bytesOf(pixels), sizeof(T), std::is_signed_v<T>);
                std::vector<T> plain(count);
                ASSERT_EQ(unpackByteOffsetPlain(packed, sizeof(T), bytesOf(plain)).pixels, count);
                ASSERT_EQ(plain, pixels);
                std::vector<T> unpacked(count);
                const UnpackedPixels done = unpackByteOffset(packed, sizeof(T), bytesOf(unpacked));
                ASSERT_EQ(done.pixels, count);
                ASSERT_EQ(done.bytes, packed.size());
                ASSERT_EQ(unpacked, pixels) << kind << ' ' << count;
            }
        }
    });
}

TYPED_TEST(ByteOffsetOfType, AnyBytesGiveWhatPlainCodeGives)
{
    using T = TypeParam;
    withEachTarget([] {
        std::mt19937_64 random(2);
        for (int round = 0; round < 300; ++round) {
            std::vector<std::byte> packed(random() % 2000);
            const unsigned escapes = static_cast<unsigned>(random() % 100);
            for (auto& each : packed) {
                const auto bits = random();
                each = static_cast<std::byte>(bits % 100 < escapes ? (bits & 256 ? 0x80 : 0x00)
                                                                   : bits >> 16);
            }
            std::vector<T> plain(1500);
            std::vector<T> vectors(1500);
            const UnpackedPixels a = unpackByteOffsetPlain(packed, sizeof(T), bytesOf(plain));
            const UnpackedPixels b = unpackByteOffset(packed, sizeof(T), bytesOf(vectors));
            ASSERT_EQ(a.pixels, b.pixels);
            ASSERT_EQ(a.bytes, b.bytes);
            ASSERT_TRUE(std::equal(plain.begin(),
                                   plain.begin() + static_cast<std::ptrdiff_t>(a.pixels),
                                   vectors.begin()));
        }
    });
}

// Large outputs go past the caches by way of a buffer, whole and cut short alike.
TEST(ByteOffsetStream, LargeOutputsEqualPlainOnes)
{
    std::mt19937_64 random(3);
    std::vector<std::byte> packed(10'000'000);
    constexpr std::size_t Period = 99'991;
    for (std::size_t i = 0; i < packed.size(); ++i)
        packed[i] = i >= Period   ? packed[i - Period]
                    : i % 97 == 0 ? std::byte(0x80)
                                  : static_cast<std::byte>(random() & 0xff);
    const auto target = [] {
        return morvend::imglib::MImage(3000, 3100, morvend::datatypes::INT, 32);
    };
    for (const std::size_t left : {packed.size(), std::size_t(9'000'001), std::size_t(4'000)}) {
        const auto stream = std::span(packed).first(left);
        morvend::imglib::MImage plain = target();
        morvend::imglib::MImage vectors = target();
        const auto pixelsOf = [](morvend::imglib::MImage& image) {
            return std::span(static_cast<std::byte*>(image.data()), image.dataSize());
        };
        const UnpackedPixels a = unpackByteOffsetPlain(stream, 4, pixelsOf(plain));
        const UnpackedPixels b = unpackByteOffset(stream, 4, pixelsOf(vectors));
        ASSERT_EQ(a.pixels, b.pixels);
        ASSERT_EQ(a.bytes, b.bytes);
        EXPECT_EQ(std::memcmp(plain.cdata(), vectors.cdata(), 4 * a.pixels), 0);
    }
}

}  // namespace
