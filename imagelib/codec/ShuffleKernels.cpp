// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One interleaving network serves the byte shuffle and, followed by a bit transposition, the bit
// shuffle; and the choice of the bit shuffle's kernel.
#include "imagelib/codec/ShuffleKernels.h"

#include "imagelib/codec/ElementSize.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/codec/ShuffleKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace morvend::codec::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

void unshuffleBits(const std::byte* planes, std::size_t count, std::size_t elementSize,
                   std::byte* elements)
{
    unshuffleBitsPlain(planes, count, elementSize, elements);
}

void shuffleBits(const std::byte* elements, std::size_t count, std::size_t elementSize,
                 std::byte* planes)
{
    shuffleBitsPlain(elements, count, elementSize, planes);
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

/// Expands bits to as many (Lanes) bytes of 0 or 255.
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

/// True if Lanes bytes of each of eight or more planes from `from` on equal those of
/// the first plane. Zeros above small counts do, and so do gaps of all ones among them.
HWY_INLINE bool equalPlanes(const std::byte* from, std::size_t stride, std::size_t count)
{
    const Bytes d;
    const Vector first = load(from);
    auto differ = hn::Zero(d);
    for (std::size_t b = 1; b < count; ++b)
        differ = hn::Or(differ, hn::Xor(load(from + b * stride), first));
    return hn::AllTrue(d, hn::Eq(differ, hn::Zero(d)));
}

/// Lanes bytes of each of eight planes to 8 * Lanes bytes.
HWY_INLINE void join(const std::byte* planes, std::size_t stride, std::byte* bytes)
{
    if (equalPlanes(planes, stride, 8)) {
        for (std::size_t q = 0; q < 8; ++q)
            hn::StoreU(spreadBits(planes + q * (Lanes / 8)), Bytes(),
                       reinterpret_cast<std::uint8_t*>(bytes + q * Lanes));
        return;
    }
    Vector rows[8];
    for (std::size_t b = 0; b < 8; ++b)
        rows[b] = load(planes + b * stride);
    interleave(rows);
    for (std::size_t q = 0; q < 8; ++q)
        storeBlocks(transposeBits(rows[q]), bytes + 16 * q, 128);
}

/// 8 * Lanes elements from their lowest bytes and one plane that stands for all planes above.
template <class T>
HWY_INLINE void widen(const std::byte* low, const std::byte* upperPlane, std::byte* elements)
{
    const hn::Repartition<T, Bytes> d;
    const hn::Rebind<std::uint8_t, decltype(d)> bytes;
    const hn::RebindToSigned<decltype(d)> signedWide;
    const hn::RebindToSigned<decltype(bytes)> signedBytes;
    constexpr std::size_t Step = Lanes / sizeof(T);
    const auto* from = reinterpret_cast<const std::uint8_t*>(low);
    auto* to = reinterpret_cast<T*>(elements);
    if (hn::AllTrue(Bytes(), hn::Eq(load(upperPlane), hn::Zero(Bytes())))) {
        for (std::size_t i = 0; i < 8 * Lanes; i += Step)
            hn::StoreU(hn::PromoteTo(d, hn::LoadU(bytes, from + i)), d, to + i);
        return;
    }
    alignas(32) std::uint8_t upper[8 * Lanes];
    for (std::size_t q = 0; q < 8; ++q)
        hn::Store(spreadBits(upperPlane + q * (Lanes / 8)), Bytes(), upper + q * Lanes);
    for (std::size_t i = 0; i < 8 * Lanes; i += Step) {
        const auto sign = hn::BitCast(signedBytes, hn::LoadU(bytes, upper + i));
        const auto high = hn::ShiftLeft<8>(hn::BitCast(d, hn::PromoteTo(signedWide, sign)));
        hn::StoreU(hn::Or(hn::PromoteTo(d, hn::LoadU(bytes, from + i)), high), d, to + i);
    }
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

/// Unshuffles whole vectors; returns the number of elements done.
std::size_t unshuffle(const std::byte* shuffled, std::size_t count, std::size_t elementSize,
                      std::byte* elements)
{
    return dispatchElementSize(
        elementSize,
        [&]<std::size_t Size>() HWY_ATTR { return unshuffleSize<Size>(shuffled, count, elements); },
        [] { return std::size_t(0); });
}

/// 8 * Lanes elements of Size bytes from Lanes bytes of each of their planes.
template <std::size_t Size>
HWY_INLINE void unshuffleStep(const std::byte* planes, std::size_t stride, std::byte* elements)
{
    alignas(32) std::byte bytes[Size * 8 * Lanes];
    join(planes, stride, Size == 1 ? elements : bytes);
    if constexpr (Size == 2 || Size == 4) {
        using T = std::conditional_t<Size == 2, std::uint16_t, std::uint32_t>;
        if (equalPlanes(planes + 8 * stride, stride, 8 * (Size - 1)))
            return widen<T>(bytes, planes + 8 * stride, elements);
    }
    for (std::size_t k = 1; k < Size; ++k)
        join(planes + 8 * k * stride, stride, bytes + 8 * k * Lanes);
    if constexpr (Size > 1)
        unshuffleSize<Size>(bytes, 8 * Lanes, elements);
}

template <std::size_t Size>
void unshuffleBlock(const std::byte* planes, std::size_t count, std::byte* elements)
{
    const std::size_t stride = count / 8;
    std::size_t j = 0;
    for (; j + Lanes <= stride; j += Lanes)
        unshuffleStep<Size>(planes + j, stride, elements + 8 * j * Size);
    unshuffleBitsPlain(planes, count, Size, elements, j);
}

void unshuffleBits(const std::byte* planes, std::size_t count, std::size_t elementSize,
                   std::byte* elements)
{
    dispatchElementSize(
        elementSize,
        [&]<std::size_t Size>() HWY_ATTR { unshuffleBlock<Size>(planes, count, elements); },
        [&] { unshuffleBitsPlain(planes, count, elementSize, elements); });
}

/// Lanes elements of Size bytes: row k holds byte k of each.
template <std::size_t Size>
HWY_INLINE void loadBytes(const std::byte* elements, Vector (&rows)[Size])
{
    const auto* from = reinterpret_cast<const std::uint8_t*>(elements);
    if constexpr (Size == 1)
        rows[0] = hn::LoadU(Bytes(), from);
    else if constexpr (Size == 2)
        hn::LoadInterleaved2(Bytes(), from, rows[0], rows[1]);
    else
        hn::LoadInterleaved4(Bytes(), from, rows[0], rows[1], rows[2], rows[3]);
}

template <std::size_t Size>
void shuffleBlock(const std::byte* elements, std::size_t count, std::byte* planes)
{
    constexpr std::size_t Step = Lanes / 8;
    const Bytes d;
    const std::size_t stride = count / 8;
    std::size_t j = 0;
    for (; j + Step <= stride; j += Step) {
        Vector rows[Size];
        loadBytes<Size>(elements + 8 * j * Size, rows);
        for (std::size_t k = 0; k < Size; ++k) {
            for (std::size_t b = 0; b < 8; ++b) {
                const auto bit = hn::Set(d, static_cast<std::uint8_t>(1U << b));
                std::uint8_t bits[8];  // as many bytes may be written
                hn::StoreMaskBits(d, hn::TestBit(rows[k], bit), bits);
                std::memcpy(planes + (8 * k + b) * stride + j, bits, Step);
            }
        }
    }
    shuffleBitsPlain(elements, count, Size, planes, j);
}

void shuffleBits(const std::byte* elements, std::size_t count, std::size_t elementSize,
                 std::byte* planes)
{
    switch (elementSize) {
    case 1:
        return shuffleBlock<1>(elements, count, planes);
    case 2:
        return shuffleBlock<2>(elements, count, planes);
    case 4:
        return shuffleBlock<4>(elements, count, planes);
    default:
        return shuffleBitsPlain(elements, count, elementSize, planes);
    }
}

#endif

}  // namespace morvend::codec::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace morvend::codec {

HWY_EXPORT(shuffleBits);
HWY_EXPORT(unshuffleBits);
HWY_EXPORT(unshuffle);

UnshuffleBits bitUnshuffler()
{
#ifdef TARVIK_AVX512_FILES
    // This target's test of the processor covers both extensions that the kernel uses.
    if (hwy::SupportedTargets() & HWY_AVX3_DL)
        return unshuffleBitsGfni;
#endif
    return unshuffleBitsVector;
}

void unshuffleBitsVector(const std::byte* planes, std::size_t count, std::size_t elementSize,
                         std::byte* elements)
{
    HWY_DYNAMIC_DISPATCH(unshuffleBits)(planes, count, elementSize, elements);
}

void shuffleBits(const std::byte* elements, std::size_t count, std::size_t elementSize,
                 std::byte* planes)
{
    HWY_DYNAMIC_DISPATCH(shuffleBits)(elements, count, elementSize, planes);
}

void unshuffleBytes(const std::byte* shuffled, std::size_t count, std::size_t elementSize,
                    std::byte* elements)
{
    std::size_t i = HWY_DYNAMIC_DISPATCH(unshuffle)(shuffled, count, elementSize, elements);
    for (; i < count; ++i)
        for (std::size_t k = 0; k < elementSize; ++k)
            elements[i * elementSize + k] = shuffled[k * count + i];
}

}  // namespace morvend::codec
#endif
