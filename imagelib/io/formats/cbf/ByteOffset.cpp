// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte-offset streams, 64 bytes a step with the best vector instructions of the processor.
#include "imagelib/io/formats/cbf/ByteOffset.h"

#include "imagelib/image/Assert.h"
#include "imagelib/image/StreamCopy.h"
#include "imagelib/io/formats/cbf/ByteOffsetPlain.h"
#include "imagelib/io/formats/cbf/LaneTables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

#define HWY_WANT_AVX3_DL 1
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/io/formats/cbf/ByteOffset.cpp"
#include <hwy/foreach_target.h>
// Highway asks for this order.
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace morvend::imglib::HWY_NAMESPACE {

using byteoffset::Cursor;
using byteoffset::Escape;

#if HWY_TARGET != HWY_SCALAR && !HWY_HAVE_SCALABLE

namespace hn = hwy::HWY_NAMESPACE;

// Highway's best target implies the instruction for dot products of bytes without enabling it.
#undef TARVIK_DOT
#if HWY_TARGET == HWY_AVX3_DL
#define TARVIK_DOT __attribute__((target(HWY_TARGET_STR ",avx512vnni")))
#else
#define TARVIK_DOT
#endif
#undef TARVIK_DOT_INLINE
#define TARVIK_DOT_INLINE TARVIK_DOT inline __attribute__((always_inline))

/// Bytes of the stream that are examined together: one bit each in a 64-bit word.
constexpr std::size_t Step = 64;
/// Bytes that may be read from the start of a step on.
constexpr std::ptrdiff_t MostRead = Step + 16;
/// How far ahead the stream is fetched into the cache.
constexpr std::size_t Ahead = 4096;

/// How far ahead the lines of pixels are fetched for writing.
constexpr std::size_t AheadOut = 2048;

/// Pixels are summed in lanes of 32 bits and narrowed when they are stored.
using Sums = hn::CappedTag<std::int32_t, 16>;
using SumVector = hn::Vec<Sums>;
constexpr std::size_t SumLanes = hn::MaxLanes(Sums());

HWY_INLINE void StoreSums(SumVector sums, std::uint32_t* out)
{
    hn::StoreU(sums, Sums(), reinterpret_cast<std::int32_t*>(out));
}

HWY_INLINE void StoreSums(SumVector sums, std::uint16_t* out)
{
    const hn::Rebind<std::uint32_t, Sums> d32;
    const hn::Rebind<std::uint16_t, Sums> d16;
    hn::StoreU(hn::TruncateTo(d16, hn::BitCast(d32, sums)), d16, out);
}

template <class D, class Table>
HWY_INLINE hn::Vec<D> Lookup(D d, hn::Vec<D> v, const Table& table)
{
    return hn::TableLookupLanes(v, hn::SetTableIndices(d, table.data()));
}

/// The last lane in all lanes.
template <class D>
HWY_INLINE hn::Vec<D> LastLane(D d, hn::Vec<D> v)
{
    return Lookup(d, v, lanes::Last<hn::TFromD<D>, hn::MaxLanes(d)>);
}

/// Adds the last lane of each lower group to all lanes of the upper group beside it.
template <std::size_t Group, class D>
HWY_INLINE hn::Vec<D> AddAcross(D d, hn::Vec<D> v)
{
    constexpr std::size_t count = hn::MaxLanes(d);
    using Word = hn::TFromD<D>;
    if constexpr (Group < count) {
        const auto ends = Lookup(d, v, lanes::EndOfLowerGroup<Word, count, Group>);
        const auto upper = hn::Load(d, lanes::InUpperGroup<Word, count, Group>.data());
        v = AddAcross<2 * Group>(d, hn::Add(v, hn::And(ends, upper)));
    }
    return v;
}

/// Each lane becomes the sum of all lanes up to it.
template <class D>
HWY_INLINE hn::Vec<D> PrefixSum(D d, hn::Vec<D> v)
{
    constexpr std::size_t inBlock = 16 / sizeof(hn::TFromD<D>);
    v = hn::Add(v, hn::ShiftLeftLanes<1>(d, v));
    if constexpr (inBlock > 2)
        v = hn::Add(v, hn::ShiftLeftLanes<2>(d, v));
    return AddAcross<inBlock>(d, v);
}

/// Bit i is set if byte i is the escape.
HWY_INLINE std::uint64_t EscapeBits(const std::uint8_t* in)
{
    const hn::CappedTag<std::uint8_t, Step> d;
    constexpr std::size_t count = hn::MaxLanes(d);
    std::uint64_t bits = 0;
#pragma GCC unroll 4
    for (std::size_t i = 0; i < Step; i += count) {
        alignas(8) std::uint8_t piece[8] = {};
        hn::StoreMaskBits(d, hn::Eq(hn::LoadU(d, in + i), hn::Set(d, Escape)), piece);
        bits |= byteoffset::valueAt<std::uint64_t>(piece) << i;
    }
    return bits;
}

/// The bytes that begin an escape, among those of its value: some belong to a wide difference.
HWY_INLINE std::uint64_t TrueEscapes(std::uint64_t bits)
{
    if ((bits & (bits << 1 | bits << 2)) == 0)
        return bits;
    std::uint64_t escapes = 0;
    while (bits != 0) {
        const int at = std::countr_zero(bits);
        escapes |= std::uint64_t(1) << at;
        bits &= ~(std::uint64_t(7) << at);
    }
    return escapes;
}

/// The place of the first difference of 4 or more bytes, Step when there is none.
HWY_INLINE std::size_t FirstWide(const std::uint8_t* in, std::uint64_t bits, std::uint64_t escapes)
{
    // The upper byte of 0x8000 is an escape byte too; after the step it is not known.
    std::uint64_t candidates = escapes & (bits >> 2 | std::uint64_t(3) << (Step - 2));
    for (; candidates != 0; candidates &= candidates - 1) {
        const auto at = static_cast<std::size_t>(std::countr_zero(candidates));
        if (byteoffset::valueAt<std::uint16_t>(in + at + 1) == 0x8000)
            return at;
    }
    return Step;
}

/// The sum of the signed bytes up to each one, for the next SumLanes bytes. Each lane takes the dot
/// product of the bytes, four by four, with ones up to its own and zeros after it: fewer
/// instructions than shifting and adding.
TARVIK_DOT_INLINE SumVector PrefixOfBytes(const std::uint8_t* in)
{
    [[maybe_unused]] constexpr std::size_t fours = SumLanes / 4;
    [[maybe_unused]] const auto four = [in](std::size_t k) TARVIK_DOT {
        return byteoffset::valueAt<std::int32_t>(in + 4 * k);
    };
    [[maybe_unused]] const auto ones = [](std::size_t k) { return &lanes::OnesUpTo<SumLanes>[k]; };
#if HWY_TARGET == HWY_AVX3_DL
    __m512i sums = _mm512_setzero_si512();
#pragma GCC unroll 4
    for (std::size_t k = 0; k < fours; ++k)
        sums = _mm512_dpbusd_epi32(sums, _mm512_load_si512(ones(k)), _mm512_set1_epi32(four(k)));
    return SumVector{sums};
#elif HWY_TARGET == HWY_AVX3
    __m512i pairs = _mm512_setzero_si512();
#pragma GCC unroll 4
    for (std::size_t k = 0; k < fours; ++k)
        pairs = _mm512_add_epi16(
            pairs, _mm512_maddubs_epi16(_mm512_load_si512(ones(k)), _mm512_set1_epi32(four(k))));
    return SumVector{_mm512_madd_epi16(pairs, _mm512_set1_epi16(1))};
#elif HWY_TARGET == HWY_AVX2
    __m256i pairs = _mm256_setzero_si256();
#pragma GCC unroll 4
    for (std::size_t k = 0; k < fours; ++k)
        pairs = _mm256_add_epi16(
            pairs,
            _mm256_maddubs_epi16(_mm256_load_si256(reinterpret_cast<const __m256i*>(ones(k))),
                                 _mm256_set1_epi32(four(k))));
    return SumVector{_mm256_madd_epi16(pairs, _mm256_set1_epi16(1))};
#elif HWY_TARGET == HWY_SSSE3 || HWY_TARGET == HWY_SSE4
    static_assert(fours == 1);
    const __m128i pairs = _mm_maddubs_epi16(
        _mm_load_si128(reinterpret_cast<const __m128i*>(ones(0))), _mm_set1_epi32(four(0)));
    return SumVector{_mm_madd_epi16(pairs, _mm_set1_epi16(1))};
#else
    const hn::Rebind<std::int8_t, Sums> d8;
    return PrefixSum(
        Sums(), hn::PromoteTo(Sums(), hn::LoadU(d8, reinterpret_cast<const std::int8_t*>(in))));
#endif
}

/// Unpacks Step bytes without an escape. `base` is the last pixel in all lanes, before and after.
template <bool PastCaches = false, class T>
TARVIK_DOT_INLINE SumVector UnpackNarrow(const std::uint8_t* in, T* out, SumVector base)
{
#pragma GCC unroll 8
    for (std::size_t i = 0; i < Step; i += SumLanes) {
        const SumVector sums = PrefixOfBytes(in + i);
        if constexpr (PastCaches)
            hn::Stream(hn::Add(base, sums), Sums(), reinterpret_cast<std::int32_t*>(out + i));
        else
            StoreSums(hn::Add(base, sums), out + i);
        base = hn::Add(base, LastLane(Sums(), sums));
    }
    return base;
}

/// Lanes from the lowest bits of a word.
HWY_INLINE hn::Mask<Sums> MaskOf(std::uint64_t bits)
{
    alignas(8) std::uint8_t bytes[8];
    std::memcpy(bytes, &bits, 8);
    return hn::LoadMaskBits(Sums(), bytes);
}

/// Number of bits set in the bytes up to each byte, one count in each byte of the result.
HWY_INLINE std::uint64_t BitsUpToByte(std::uint64_t bits)
{
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0f0f0f0f0f0f0f0f;
    return bits * 0x0101010101010101;
}

/// Number of bits set below bit `end`, a multiple of 4. `counts` is BitsUpToByte(bits).
HWY_INLINE std::size_t CountBefore(std::uint64_t bits, std::uint64_t counts, std::size_t end)
{
    std::size_t count = end < 8 ? 0 : counts >> (end / 8 * 8 - 8) & 0xff;
    if (end % 8 != 0)
        count += lanes::BitsOfFour[bits >> (end - 4) & 15];
    return count;
}

/// The lanes whose bit is set, moved together.
HWY_INLINE SumVector Compress(SumVector v, std::uint64_t bits)
{
#if HWY_TARGET <= HWY_AVX3
    return hn::Compress(v, MaskOf(bits));
#else
    // Highway's own copies its table to the stack for each vector here.
    const auto& order = lanes::SetBits<SumLanes>[bits & ((1U << SumLanes) - 1)];
    const Sums d;
    const hn::Rebind<std::uint8_t, Sums> d8;
    return hn::TableLookupLanes(
        v, hn::IndicesFromVec(d, hn::PromoteTo(d, hn::Load(d8, order.data()))));
#endif
}

/// Unpacks the pixels of the bytes before `limit`, where differences have 1 or 2 bytes. `base` as
/// above.
template <class T>
HWY_INLINE SumVector UnpackMixed(const std::uint8_t* in, T*& out, std::uint64_t escapes,
                                 std::size_t limit, SumVector base)
{
    const Sums d;
    const hn::Rebind<std::int8_t, Sums> d8;
    const hn::Rebind<std::uint8_t, Sums> du8;
    const auto signedAt = [](const std::uint8_t* at) {
        return reinterpret_cast<const std::int8_t*>(at);
    };
    const std::uint64_t below = limit == Step ? ~std::uint64_t(0) : (std::uint64_t(1) << limit) - 1;
    const std::uint64_t pixels = ~(escapes << 1 | escapes << 2) & below;
    const std::uint64_t counts = BitsUpToByte(pixels);
    T* to = out;
#pragma GCC unroll 8
    for (std::size_t i = 0; i < Step; i += SumLanes) {
        // A lane holds the difference that its byte begins, and 0 where it begins none.
        const auto isPixel = MaskOf(pixels >> i);
        const auto isEscape = MaskOf(escapes >> i);
        const auto narrow = hn::PromoteTo(d, hn::LoadU(d8, signedAt(in + i)));
        const auto low = hn::PromoteTo(d, hn::LoadU(du8, in + i + 1));
        const auto high = hn::PromoteTo(d, hn::LoadU(d8, signedAt(in + i + 2)));
        const auto wide = hn::Or(low, hn::ShiftLeft<8>(high));
        const auto difference = hn::IfThenElse(isEscape, wide, narrow);
        const auto sums = PrefixSum(d, hn::IfThenElseZero(isPixel, difference));
        StoreSums(Compress(hn::Add(base, sums), pixels >> i), to);
        to = out + CountBefore(pixels, counts, i + SumLanes);
        base = hn::Add(base, LastLane(d, sums));
    }
    out = to;
    return base;
}

template <class T>
TARVIK_DOT void UnpackVectors(Cursor<T>& at)
{
    const Sums d;
    const std::uint8_t* in = at.in;
    T* out = at.out;
    SumVector base = hn::Set(d, static_cast<std::int32_t>(at.value));
    while (at.inEnd - in >= MostRead &&
           at.outEnd - out >= static_cast<std::ptrdiff_t>(Step + SumLanes)) {
        if (at.inEnd - in > static_cast<std::ptrdiff_t>(Ahead))
            hwy::Prefetch(in + Ahead);
        for (std::size_t i = 0; i < Step * sizeof(T); i += 64)
            __builtin_prefetch(reinterpret_cast<const char*>(out) + AheadOut + i, 1, 3);
        const std::uint64_t bits = EscapeBits(in);
        if (bits == 0) {
            base = UnpackNarrow(in, out, base);
            in += Step;
            out += Step;
            continue;
        }
        const std::uint64_t escapes = TrueEscapes(bits);
        const std::size_t limit = FirstWide(in, bits, escapes);
        base = UnpackMixed(in, out, escapes, limit, base);
        if (limit == Step) {
            // The last escapes reach into the next step.
            in += Step + (escapes >> 63) * 2 + (escapes >> 62 & 1);
            continue;
        }
        at = {in + limit, at.inEnd, out, at.outEnd, static_cast<T>(hn::GetLane(base))};
        if (!byteoffset::unpackWide(at))
            return;
        in = at.in;
        out = at.out;
        base = hn::Set(d, static_cast<std::int32_t>(at.value));
    }
    at = {in, at.inEnd, out, at.outEnd, static_cast<T>(hn::GetLane(base))};
}

/// Unpacks up to the next escape, past the caches: the memory takes one step's pixels while the
/// next one is summed. Pixels before the first whole line are stored as usual.
TARVIK_DOT void UnpackNarrowPastCaches(Cursor<std::uint32_t>& at)
{
    constexpr std::size_t Line = 64 / sizeof(std::uint32_t);
    const std::uint8_t* in = at.in;
    std::uint32_t* out = at.out;
    SumVector base = hn::Set(Sums(), static_cast<std::int32_t>(at.value));
    const auto isNarrow = [&] TARVIK_DOT {
        return at.inEnd - in >= MostRead && at.outEnd - out >= static_cast<std::ptrdiff_t>(Step) &&
               EscapeBits(in) == 0;
    };
    const std::size_t beyond = reinterpret_cast<std::uintptr_t>(out) / sizeof(*out) % Line;
    if (beyond != 0 && isNarrow()) {
        UnpackNarrow(in, out, base);
        in += Step - beyond;
        out += Step - beyond;
        base = hn::Set(Sums(), static_cast<std::int32_t>(out[-1]));
    }
    if (reinterpret_cast<std::uintptr_t>(out) % 64 == 0) {
        for (; isNarrow(); in += Step, out += Step) {
            if (at.inEnd - in > static_cast<std::ptrdiff_t>(Ahead))
                hwy::Prefetch(in + Ahead);
            base = UnpackNarrow<true>(in, out, base);
        }
    }
    at = {in, at.inEnd, out, at.outEnd, static_cast<std::uint32_t>(hn::GetLane(base))};
}

/// Packs whole vectors of pixels from number `first` on as long as all their differences fit into
/// a byte. Returns the number of the first pixel that is left; `out` is moved.
template <class P>
std::size_t PackVectors(const P* pixels, std::size_t first, std::size_t count, std::uint8_t*& out)
{
    const Sums d;
    const hn::Rebind<P, Sums> dPixel;
    const hn::Rebind<std::int8_t, Sums> d8;
    const auto load = [&](const P* from) HWY_ATTR {
        if constexpr (sizeof(P) == 4)
            return hn::BitCast(d, hn::LoadU(dPixel, from));
        else
            return hn::PromoteTo(d, hn::LoadU(dPixel, from));
    };
    std::size_t i = first;
    for (; i + SumLanes <= count; i += SumLanes) {
        const auto difference = hn::Sub(load(pixels + i), load(pixels + i - 1));
        if (!hn::AllTrue(d, hn::And(hn::Gt(difference, hn::Set(d, -128)),
                                    hn::Lt(difference, hn::Set(d, 128)))))
            break;
        hn::StoreU(hn::DemoteTo(d8, difference), d8, reinterpret_cast<std::int8_t*>(out));
        out += SumLanes;
    }
    return i;
}

#else

template <class T>
void UnpackVectors(Cursor<T>&)
{}

void UnpackNarrowPastCaches(Cursor<std::uint32_t>&) {}

template <class P>
std::size_t PackVectors(const P*, std::size_t first, std::size_t, std::uint8_t*&)
{
    return first;
}

#endif

void UnpackVectors16(Cursor<std::uint16_t>& at) { UnpackVectors(at); }
void UnpackVectors32(Cursor<std::uint32_t>& at) { UnpackVectors(at); }

#define TARVIK_PACK(Name, P)                                                                       \
    std::size_t Name(const P* pixels, std::size_t first, std::size_t count, std::uint8_t*& out)    \
    {                                                                                              \
        return PackVectors(pixels, first, count, out);                                             \
    }
TARVIK_PACK(PackSigned16, std::int16_t)
TARVIK_PACK(PackUnsigned16, std::uint16_t)
TARVIK_PACK(PackSigned32, std::int32_t)
TARVIK_PACK(PackUnsigned32, std::uint32_t)
#undef TARVIK_PACK

}  // namespace morvend::imglib::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace morvend::imglib {

namespace {

HWY_EXPORT(UnpackVectors16);
HWY_EXPORT(UnpackVectors32);
HWY_EXPORT(UnpackNarrowPastCaches);
HWY_EXPORT(PackSigned16);
HWY_EXPORT(PackUnsigned16);
HWY_EXPORT(PackSigned32);
HWY_EXPORT(PackUnsigned32);

using byteoffset::Cursor;

template <class T>
void unpackVectors(Cursor<T>& at)
{
    if constexpr (sizeof(T) == 2)
        HWY_DYNAMIC_DISPATCH(UnpackVectors16)(at);
    else if constexpr (sizeof(T) == 4)
        HWY_DYNAMIC_DISPATCH(UnpackVectors32)(at);
}

/// True if the stream has no escape for a while.
template <class T>
bool isQuiet(const Cursor<T>& at)
{
    constexpr std::ptrdiff_t While = 256;
    return at.inEnd - at.in >= While && std::memchr(at.in, byteoffset::Escape, While) == nullptr;
}

/// Unpacks large images. Runs without an escape go straight to memory. Other pixels go through
/// a buffer that stays in the first cache, from which whole lines go to memory: a store that misses
/// the cache would first read the line that it overwrites.
template <class T>
void unpackStreaming(Cursor<T>& at)
{
    constexpr std::size_t Line = 64;
    constexpr std::size_t Pixels = 1024;
    alignas(Line) std::array<T, Pixels> stage;
    std::size_t waiting = 0;  // pixels at the start of the stage that fill no line yet
    while (at.outEnd - at.out > static_cast<std::ptrdiff_t>(Pixels)) {
        if constexpr (sizeof(T) == 4) {
            if (isQuiet(at)) {
                at.out = std::copy_n(stage.data(), waiting, at.out);
                waiting = 0;
                const auto* const before = at.in;
                HWY_DYNAMIC_DISPATCH(UnpackNarrowPastCaches)(at);
                if (at.in != before)
                    continue;
            }
        }
        Cursor<T> staged{at.in, at.inEnd, stage.data() + waiting, stage.data() + Pixels, at.value};
        unpackVectors(staged);
        const auto filled = static_cast<std::size_t>(staged.out - stage.data());
        const std::size_t lines = filled * sizeof(T) / Line * Line;
        image::streamCopy(stage.data(), at.out, lines);
        const bool stuck = staged.in == at.in;
        at.in = staged.in;
        at.value = staged.value;
        at.out += lines / sizeof(T);
        waiting = filled - lines / sizeof(T);
        std::copy_n(stage.data() + lines / sizeof(T), waiting, stage.data());
        if (stuck)
            break;
    }
    image::finishStreaming();
    at.out = std::copy_n(stage.data(), waiting, at.out);
}

template <class T>
UnpackedPixels unpackAs(std::span<const std::byte> packed, std::span<std::byte> pixels,
                        bool vectors)
{
    const auto* in = reinterpret_cast<const std::uint8_t*>(packed.data());
    auto* out = reinterpret_cast<T*>(pixels.data());
    Cursor<T> at{in, in + packed.size(), out, out + pixels.size() / sizeof(T)};
    if (vectors && (sizeof(T) == 2 || sizeof(T) == 4)) {
        if (image::isWorthStreaming(out, pixels.size()))
            unpackStreaming(at);
        unpackVectors(at);
    }
    byteoffset::unpackRest(at);
    return {static_cast<std::size_t>(at.out - out), static_cast<std::size_t>(at.in - in)};
}

UnpackedPixels unpackAny(std::span<const std::byte> packed, std::size_t pixelBytes,
                         std::span<std::byte> pixels, bool vectors)
{
    assert(pixels.size() % pixelBytes == 0);
    switch (pixelBytes) {
    case 1:
        return unpackAs<std::uint8_t>(packed, pixels, vectors);
    case 2:
        return unpackAs<std::uint16_t>(packed, pixels, vectors);
    case 4:
        return unpackAs<std::uint32_t>(packed, pixels, vectors);
    default:
        assert(pixelBytes == 8);
        return unpackAs<std::uint64_t>(packed, pixels, vectors);
    }
}

template <class P>
std::size_t packVectors(const P* pixels, std::size_t first, std::size_t count, std::uint8_t*& out)
{
    if constexpr (std::is_same_v<P, std::int16_t>)
        return HWY_DYNAMIC_DISPATCH(PackSigned16)(pixels, first, count, out);
    else if constexpr (std::is_same_v<P, std::uint16_t>)
        return HWY_DYNAMIC_DISPATCH(PackUnsigned16)(pixels, first, count, out);
    else if constexpr (std::is_same_v<P, std::int32_t>)
        return HWY_DYNAMIC_DISPATCH(PackSigned32)(pixels, first, count, out);
    else if constexpr (std::is_same_v<P, std::uint32_t>)
        return HWY_DYNAMIC_DISPATCH(PackUnsigned32)(pixels, first, count, out);
    else
        return first;
}

template <class P>
std::vector<std::byte> packAs(std::span<const std::byte> bytes)
{
    constexpr std::size_t Block = 8192;
    constexpr std::size_t MostBytes = 15;  // of one pixel
    const auto* pixels = reinterpret_cast<const P*>(bytes.data());
    const std::size_t count = bytes.size() / sizeof(P);
    std::vector<std::uint8_t> scratch(Block * MostBytes);
    std::vector<std::byte> packed;
    packed.reserve(count + count / 4);
    // Narrow pixels have exact differences, 4 and 8 bytes wrap around at their width.
    using Difference = std::conditional_t<(sizeof(P) < 8), std::int32_t, std::int64_t>;
    std::uint64_t last = 0;
    for (std::size_t first = 0; first < count; first += Block) {
        const std::size_t end = std::min(count, first + Block);
        std::uint8_t* out = scratch.data();
        for (std::size_t i = first; i < end;) {
            constexpr std::size_t Run = 16;
            for (const std::size_t stop = std::min(end, i + Run); i < stop; ++i) {
                const auto value = static_cast<std::uint64_t>(static_cast<std::int64_t>(pixels[i]));
                out = byteoffset::packOne(static_cast<Difference>(value - last), out);
                last = value;
            }
            i = packVectors(pixels, i, end, out);
            last = static_cast<std::uint64_t>(static_cast<std::int64_t>(pixels[i - 1]));
        }
        const auto* begin = reinterpret_cast<const std::byte*>(scratch.data());
        packed.insert(packed.end(), begin, begin + (out - scratch.data()));
    }
    return packed;
}

}  // namespace

UnpackedPixels unpackByteOffset(std::span<const std::byte> packed, std::size_t pixelBytes,
                                std::span<std::byte> pixels)
{
    return unpackAny(packed, pixelBytes, pixels, true);
}

UnpackedPixels unpackByteOffsetPlain(std::span<const std::byte> packed, std::size_t pixelBytes,
                                     std::span<std::byte> pixels)
{
    return unpackAny(packed, pixelBytes, pixels, false);
}

std::vector<std::byte> packByteOffset(std::span<const std::byte> pixels, std::size_t pixelBytes,
                                      bool isSigned)
{
    assert(pixels.size() % pixelBytes == 0);
    switch (pixelBytes) {
    case 1:
        return isSigned ? packAs<std::int8_t>(pixels) : packAs<std::uint8_t>(pixels);
    case 2:
        return isSigned ? packAs<std::int16_t>(pixels) : packAs<std::uint16_t>(pixels);
    case 4:
        return isSigned ? packAs<std::int32_t>(pixels) : packAs<std::uint32_t>(pixels);
    default:
        assert(pixelBytes == 8);
        return isSigned ? packAs<std::int64_t>(pixels) : packAs<std::uint64_t>(pixels);
    }
}

}  // namespace morvend::imglib

#endif
