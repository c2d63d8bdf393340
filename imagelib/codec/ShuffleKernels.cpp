// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One interleaving network serves the byte shuffle and, followed by a bit transposition, the bit
// shuffle.
#include "imagelib/codec/ShuffleKernels.h"

#include "imagelib/codec/BitPlanes.h"

#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/codec/ShuffleKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace morvend::codec::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

void join(const std::byte* planes, std::size_t count, std::byte* bytes)
{
    joinPlanesPlain(planes, count, bytes);
}

std::size_t unshuffle(const std::byte*, std::size_t, std::size_t, std::byte*) { return 0; }

#else

using Bytes = hn::CappedTag<std::uint8_t, 32>;
using Words = hn::Repartition<std::uint64_t, Bytes>;
using Vector = hn::Vec<Bytes>;
constexpr std::size_t Lanes = hn::MaxLanes(Bytes());

Vector load(const std::byte* from)
{
    return hn::LoadU(Bytes(), reinterpret_cast<const std::uint8_t*>(from));
}

/// Stores the 16-byte blocks of a vector `distance` bytes apart.
void storeBlocks(Vector v, std::byte* to, [[maybe_unused]] std::size_t distance)
{
    auto* bytes = reinterpret_cast<std::uint8_t*>(to);
    const hn::Full128<std::uint8_t> block;
#if HWY_CAP_GE256
    hn::StoreU(hn::LowerHalf(block, v), block, bytes);
    hn::StoreU(hn::UpperHalf(block, v), block, bytes + distance);
#else
    hn::StoreU(v, block, bytes);
#endif
}

/// Rows of bytes to columns: within each 16-byte block b, vector v afterwards holds byte
/// (16 / Size) * v + c of row r at place c * Size + r.
template <std::size_t Size>
HWY_INLINE void interleave(Vector (&rows)[Size])
{
    const Bytes d;
    for (std::size_t level = 1; level < Size; level *= 2) {
        Vector next[Size];
        for (std::size_t k = 0; k < Size / 2; ++k) {
            next[2 * k] = hn::InterleaveLower(d, rows[k], rows[k + Size / 2]);
            next[2 * k + 1] = hn::InterleaveUpper(d, rows[k], rows[k + Size / 2]);
        }
        for (std::size_t k = 0; k < Size; ++k)
            rows[k] = next[k];
    }
}

template <int Distance>
HWY_INLINE hn::Vec<Words> swapBits(hn::Vec<Words> x, std::uint64_t mask)
{
    const auto t = hn::And(hn::Xor(x, hn::ShiftRight<Distance>(x)), hn::Set(Words(), mask));
    return hn::Xor(x, hn::Xor(t, hn::ShiftLeft<Distance>(t)));
}

HWY_INLINE Vector transposeBits(Vector matrices)
{
    auto x = hn::BitCast(Words(), matrices);
    x = swapBits<7>(x, 0x00AA00AA00AA00AA);
    x = swapBits<14>(x, 0x0000CCCC0000CCCC);
    x = swapBits<28>(x, 0x00000000F0F0F0F0);
    return hn::BitCast(Bytes(), x);
}

/// Lanes bytes of 0 or 255 for as many bits.
HWY_INLINE Vector spreadBits(const std::byte* bits)
{
    alignas(32) static constexpr std::uint8_t Place[32] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1,
                                                           1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2,
                                                           2, 2, 3, 3, 3, 3, 3, 3, 3, 3};
    const Bytes d;
    std::uint32_t word = 0;
    std::memcpy(&word, bits, Lanes / 8);
    const auto all = hn::BitCast(d, hn::Set(hn::Repartition<std::uint32_t, Bytes>(), word));
    const auto bit = hn::BitCast(d, hn::Set(Words(), 0x8040201008040201));
    const auto placed = hn::TableLookupBytes(all, hn::Load(d, Place));
    return hn::VecFromMask(d, hn::TestBit(placed, bit));
}

void join(const std::byte* planes, std::size_t count, std::byte* bytes)
{
    const Bytes d;
    const std::size_t stride = count / 8;
    std::size_t j = 0;
    for (; j + Lanes <= stride; j += Lanes) {
        Vector rows[8];
        auto differ = hn::Zero(d);
        for (std::size_t k = 0; k < 8; ++k) {
            rows[k] = load(planes + k * stride + j);
            differ = hn::Or(differ, hn::Xor(rows[k], rows[0]));
        }
        std::byte* to = bytes + 8 * j;
        if (hn::AllTrue(d, hn::Eq(differ, hn::Zero(d)))) {
            // Zeros above small counts, and gaps of all ones among them: a byte is 0 or 255.
            for (std::size_t q = 0; q < 8; ++q)
                hn::StoreU(spreadBits(planes + j + q * (Lanes / 8)), d,
                           reinterpret_cast<std::uint8_t*>(to + q * Lanes));
            continue;
        }
        interleave(rows);
        for (std::size_t q = 0; q < 8; ++q)
            storeBlocks(transposeBits(rows[q]), to + 16 * q, 128);
    }
    joinPlanesPlain(planes, count, bytes, j);
}

template <std::size_t Size>
std::size_t unshuffleSize(const std::byte* shuffled, std::size_t count, std::byte* elements)
{
    std::size_t i = 0;
    for (; i + Lanes <= count; i += Lanes) {
        Vector rows[Size];
        for (std::size_t k = 0; k < Size; ++k)
            rows[k] = load(shuffled + k * count + i);
        interleave(rows);
        for (std::size_t q = 0; q < Size; ++q)
            storeBlocks(rows[q], elements + Size * i + 16 * q, 16 * Size);
    }
    return i;
}

std::size_t unshuffle(const std::byte* shuffled, std::size_t count, std::size_t elementSize,
                      std::byte* elements)
{
    switch (elementSize) {
    case 2:
        return unshuffleSize<2>(shuffled, count, elements);
    case 4:
        return unshuffleSize<4>(shuffled, count, elements);
    case 8:
        return unshuffleSize<8>(shuffled, count, elements);
    default:
        return 0;
    }
}

#endif

}  // namespace morvend::codec::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace morvend::codec {

HWY_EXPORT(join);
HWY_EXPORT(unshuffle);

void joinPlanesVector(const std::byte* planes, std::size_t count, std::byte* bytes)
{
    HWY_DYNAMIC_DISPATCH(join)(planes, count, bytes);
}

std::size_t unshuffleVector(const std::byte* shuffled, std::size_t count, std::size_t elementSize,
                            std::byte* elements)
{
    return HWY_DYNAMIC_DISPATCH(unshuffle)(shuffled, count, elementSize, elements);
}

}  // namespace morvend::codec
#endif
