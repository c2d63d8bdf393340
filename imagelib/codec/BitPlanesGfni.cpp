// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bit planes to bytes with the bit-matrix instruction, 512 bytes a step. Compiled with flags of
// their its own: it must not include what other files share, or their inline code would need those
// flags too (ElementSize.h holds only a template, instantiated with lambdas of this file).
#include "imagelib/codec/BitPlanes.h"
#include "imagelib/codec/ElementSize.h"
#include "imagelib/codec/ShuffleKernels.h"

#include <cstdint>
#include <utility>

#include <immintrin.h>

namespace morvend::codec {

namespace {

struct Rows {
    __m512i row[8];
};

/// Row q of the result holds the q-th eight bytes of every row.
Rows transposeQwords(const Rows& in)
{
    Rows a, b, out;
    for (int i = 0; i < 4; ++i) {
        a.row[2 * i] = _mm512_unpacklo_epi64(in.row[2 * i], in.row[2 * i + 1]);
        a.row[2 * i + 1] = _mm512_unpackhi_epi64(in.row[2 * i], in.row[2 * i + 1]);
    }
    // The 128-bit lanes: a[0], a[2], a[4], a[6] hold the even qwords of rows 01, 23, 45, 67.
    for (int odd = 0; odd < 2; ++odd) {
        b.row[odd] = _mm512_shuffle_i64x2(a.row[odd], a.row[2 + odd], 0x88);
        b.row[2 + odd] = _mm512_shuffle_i64x2(a.row[4 + odd], a.row[6 + odd], 0x88);
        b.row[4 + odd] = _mm512_shuffle_i64x2(a.row[odd], a.row[2 + odd], 0xdd);
        b.row[6 + odd] = _mm512_shuffle_i64x2(a.row[4 + odd], a.row[6 + odd], 0xdd);
        out.row[odd] = _mm512_shuffle_i64x2(b.row[odd], b.row[2 + odd], 0x88);
        out.row[4 + odd] = _mm512_shuffle_i64x2(b.row[odd], b.row[2 + odd], 0xdd);
        out.row[2 + odd] = _mm512_shuffle_i64x2(b.row[4 + odd], b.row[6 + odd], 0x88);
        out.row[6 + odd] = _mm512_shuffle_i64x2(b.row[4 + odd], b.row[6 + odd], 0xdd);
    }
    return out;
}

/// The 64 indices of a permutation of bytes.
struct Places {
    alignas(64) unsigned char of[64] = {};
};

/// Eight rows of eight bytes: byte j of each row goes to qword j, last row first, as the matrix
/// product below needs it.
constexpr Places columnsOfRows()
{
    Places places;
    for (unsigned column = 0; column < 8; ++column)
        for (unsigned row = 0; row < 8; ++row)
            places.of[8 * column + row] = static_cast<unsigned char>(8 * (7 - row) + column);
    return places;
}
constexpr Places ColumnsOfRows = columnsOfRows();

/// Spreads part `part` of 64 bytes: one byte to the lowest byte of each element.
template <std::size_t Size>
constexpr Places lowestBytes(std::size_t part)
{
    Places places;
    for (std::size_t i = 0; i < 64 / Size; ++i)
        places.of[i * Size] = static_cast<unsigned char>(part * 64 / Size + i);
    return places;
}
template <std::size_t Size, std::size_t Part>
constexpr Places LowestBytes = lowestBytes<Size>(Part);

/// True if the 64 bytes of each of `count` planes equal those of the first plane. Zeros
/// above small counts do, and so do gaps of all ones among them.
bool equalPlanes(const std::byte* planes, std::size_t stride, std::size_t count)
{
    const __m512i first = _mm512_loadu_si512(planes);
    __m512i differ = _mm512_setzero_si512();
    for (std::size_t b = 1; b < count; ++b)
        differ = _mm512_or_si512(differ,
                                 _mm512_xor_si512(_mm512_loadu_si512(planes + b * stride), first));
    return _mm512_test_epi64_mask(differ, differ) == 0;
}

std::uint64_t bitsAt(const std::byte* plane)
{
    std::uint64_t bits;
    __builtin_memcpy(&bits, plane, sizeof bits);
    return bits;
}

/// 64 bytes of each of eight planes to 512 bytes.
void join(const std::byte* planes, std::size_t stride, __m512i (&bytes)[8])
{
    if (equalPlanes(planes, stride, 8)) {
        for (std::size_t q = 0; q < 8; ++q)
            bytes[q] = _mm512_movm_epi8(bitsAt(planes + 8 * q));
        return;
    }
    // Multiplied with a matrix, the unit rows give its transpose.
    const __m512i unit = _mm512_set1_epi64(static_cast<long long>(0x8040201008040201ULL));
    const __m512i columns = _mm512_load_si512(ColumnsOfRows.of);
    Rows in;
    for (std::size_t b = 0; b < 8; ++b)
        in.row[b] = _mm512_loadu_si512(planes + b * stride);
    const Rows pieces = transposeQwords(in);
    for (std::size_t q = 0; q < 8; ++q)
        bytes[q] =
            _mm512_gf2p8affine_epi64_epi8(unit, _mm512_permutexvar_epi8(columns, pieces.row[q]), 0);
}

/// Sets the bits above the lowest byte in those of 64 / Size elements whose bit is set.
template <std::size_t Size>
__m512i upperBytes(std::uint64_t bits)
{
    if constexpr (Size == 2)
        return _mm512_maskz_set1_epi16(static_cast<__mmask32>(bits), static_cast<short>(0xff00));
    else if constexpr (Size == 4)
        return _mm512_maskz_set1_epi32(static_cast<__mmask16>(bits), static_cast<int>(0xffffff00));
    else
        return _mm512_maskz_set1_epi64(static_cast<__mmask8>(bits), ~0xffLL);
}

/// 64 elements from their lowest bytes and one bit that stands for all bits above.
template <std::size_t Size, std::size_t... Part>
void widen64(__m512i low, std::uint64_t upper, std::byte* elements, std::index_sequence<Part...>)
{
    constexpr __mmask64 Lowest = Size == 2   ? 0x5555555555555555
                                 : Size == 4 ? 0x1111111111111111
                                             : 0x0101010101010101;
    __m512i wide[] = {_mm512_maskz_permutexvar_epi8(
        Lowest, _mm512_load_si512(LowestBytes<Size, Part>.of), low)...};
    if (upper != 0)
        ((wide[Part] = _mm512_or_si512(wide[Part], upperBytes<Size>(upper >> Part * (64 / Size)))),
         ...);
    (_mm512_storeu_si512(elements + 64 * Part, wide[Part]), ...);
}

template <std::size_t Size>
void widen(const __m512i (&low)[8], const std::byte* upperPlane, std::byte* elements)
{
    for (std::size_t q = 0; q < 8; ++q)
        widen64<Size>(low[q], bitsAt(upperPlane + 8 * q), elements + 64 * Size * q,
                      std::make_index_sequence<Size>());
}

/// 512 elements from 64 bytes of each of their planes.
template <std::size_t Size>
void unshuffleStep(const std::byte* planes, std::size_t stride, std::byte* elements)
{
    __m512i low[8];
    join(planes, stride, low);
    if constexpr (Size == 1) {
        for (std::size_t q = 0; q < 8; ++q)
            _mm512_storeu_si512(elements + 64 * q, low[q]);
    } else if (equalPlanes(planes + 8 * stride, stride, 8 * (Size - 1))) {
        widen<Size>(low, planes + 8 * stride, elements);
    } else {
        alignas(64) std::byte bytes[Size * 512];
        for (std::size_t q = 0; q < 8; ++q)
            _mm512_store_si512(bytes + 64 * q, low[q]);
        for (std::size_t k = 1; k < Size; ++k) {
            __m512i next[8];
            join(planes + 8 * k * stride, stride, next);
            for (std::size_t q = 0; q < 8; ++q)
                _mm512_store_si512(bytes + 512 * k + 64 * q, next[q]);
        }
        unshuffleBytes(bytes, 512, Size, elements);
    }
}

template <std::size_t Size>
void unshuffleBlock(const std::byte* planes, std::size_t count, std::byte* elements)
{
    const std::size_t stride = count / 8;
    std::size_t j = 0;
    for (; j + 64 <= stride; j += 64)
        unshuffleStep<Size>(planes + j, stride, elements + 8 * j * Size);
    unshuffleBitsPlain(planes, count, Size, elements, j);
}

}  // namespace

void unshuffleBitsGfni(const std::byte* planes, std::size_t count, std::size_t elementSize,
                       std::byte* elements)
{
    dispatchElementSize(
        elementSize, [&]<std::size_t Size>() { unshuffleBlock<Size>(planes, count, elements); },
        [&] { unshuffleBitsPlain(planes, count, elementSize, elements); });
}

}  // namespace morvend::codec
