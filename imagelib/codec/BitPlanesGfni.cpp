// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bit planes to bytes with the bit-matrix instruction, 512 bytes a step. Compiled with flags of its
// own: it may include nothing that other files share, or their inline code would need them too.
#include "imagelib/codec/BitPlanes.h"

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

/// Eight rows of eight bytes: byte j of each row goes to qword j, the last row first, as the matrix
/// product below wants it.
__m512i byteColumns()
{
    alignas(64) unsigned char index[64];
    for (unsigned column = 0; column < 8; ++column)
        for (unsigned row = 0; row < 8; ++row)
            index[8 * column + row] = static_cast<unsigned char>(8 * (7 - row) + column);
    return _mm512_load_si512(index);
}

}  // namespace

void joinPlanesGfni(const std::byte* planes, std::size_t count, std::byte* bytes)
{
    const std::size_t stride = count / 8;
    const __m512i columns = byteColumns();
    // Multiplied with a matrix, the unit rows give its transpose.
    const __m512i unit = _mm512_set1_epi64(static_cast<long long>(0x8040201008040201ULL));
    std::size_t j = 0;
    for (; j + 64 <= stride; j += 64) {
        Rows in;
        __m512i differ = _mm512_setzero_si512();
        for (int k = 0; k < 8; ++k) {
            in.row[k] = _mm512_loadu_si512(planes + static_cast<std::size_t>(k) * stride + j);
            differ = _mm512_or_si512(differ, _mm512_xor_si512(in.row[k], in.row[0]));
        }
        std::byte* to = bytes + 8 * j;
        if (_mm512_test_epi64_mask(differ, differ) == 0) {
            // Zeros above small counts, and gaps of all ones among them: a byte is 0 or 255.
            for (std::size_t q = 0; q < 8; ++q) {
                __mmask64 bits;
                __builtin_memcpy(&bits, planes + j + 8 * q, sizeof bits);
                _mm512_storeu_si512(to + 64 * q, _mm512_movm_epi8(bits));
            }
            continue;
        }
        const Rows pieces = transposeQwords(in);
        for (std::size_t q = 0; q < 8; ++q) {
            const __m512i matrices = _mm512_permutexvar_epi8(columns, pieces.row[q]);
            _mm512_storeu_si512(to + 64 * q, _mm512_gf2p8affine_epi64_epi8(unit, matrices, 0));
        }
    }
    for (; j + 8 <= stride; j += 8) {
        long long rows[8];
        for (std::size_t k = 0; k < 8; ++k)
            __builtin_memcpy(&rows[k], planes + k * stride + j, sizeof rows[k]);
        const __m512i matrices = _mm512_permutexvar_epi8(columns, _mm512_loadu_si512(rows));
        _mm512_storeu_si512(bytes + 8 * j, _mm512_gf2p8affine_epi64_epi8(unit, matrices, 0));
    }
    joinPlanesPlain(planes, count, bytes, j);
}

}  // namespace morvend::codec
