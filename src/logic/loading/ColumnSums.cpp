// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Folding of rows for each instruction set.
#include "logic/loading/ColumnSums.h"

#include "logic/support/Assert.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/loading/ColumnSums.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/highway.h>

// Every sum of rows by its type of pixel and name.
#define TARVIK_EACH_SUM(X)                                                                         \
    X(std::int8_t, addInt8)                                                                        \
    X(std::int16_t, addInt16)                                                                      \
    X(std::int32_t, addInt32)                                                                      \
    X(std::uint8_t, addUInt8)                                                                      \
    X(std::uint16_t, addUInt16)                                                                    \
    X(std::uint32_t, addUInt32)

HWY_BEFORE_NAMESPACE();
namespace thumbnail::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The hardware prefetcher alone is too slow here.
HWY_INLINE void fetchAhead(const void* place)
{
    __builtin_prefetch(static_cast<const char*>(place) + 4096);
}

/// Rows that are folded at a time: several streams from memory use more of its bandwidth than one,
/// and the sums are loaded and stored less often.
constexpr std::size_t Together = 4;

/// Calls one(x) for whole vectors of `lanes` columns and rest(x) for the columns after them.
template <class One, class Rest>
HWY_INLINE void overColumns(std::size_t columns, std::size_t lanes, One&& one, Rest&& rest)
{
    std::size_t x = 0;
    for (; x + lanes <= columns; x += lanes)
        one(x);
    for (; x < columns; ++x)
        rest(x);
}

/// Adds whole vectors of a few rows to the sums of their columns.
template <class T, class D>
HWY_INLINE void addVectors(D ds, const T* pixels, std::size_t columns, std::size_t rows,
                           ColumnSum<T>* sums, bool first)
{
    using Wide =
        std::conditional_t<std::is_signed_v<T> || sizeof(T) < 4, ColumnSum<T>, std::uint64_t>;
    const hn::Rebind<Wide, D> dw;
    const hn::Rebind<T, D> dt;
    auto sum = first ? hn::Zero(ds) : hn::LoadU(ds, sums);
    for (std::size_t row = 0; row < rows; ++row)
        sum =
            hn::Add(sum, hn::BitCast(ds, hn::PromoteTo(dw, hn::LoadU(dt, pixels + row * columns))));
    hn::StoreU(sum, ds, sums);
}

template <class T>
HWY_INLINE void addTogether(const T* pixels, std::size_t columns, std::size_t rows, bool first,
                            ColumnSum<T>* sums, T* bits)
{
    using Sum = ColumnSum<T>;
    const hn::ScalableTag<Sum> ds;
    const hn::ScalableTag<T> dt;
    const std::size_t lanes = hn::Lanes(dt);
    overColumns(
        columns, lanes,
        [&](std::size_t x) {
            for (std::size_t row = 0; row < rows; ++row)
                fetchAhead(pixels + row * columns + x);
            for (std::size_t part = 0; part < lanes; part += hn::Lanes(ds))
                addVectors<T>(ds, pixels + x + part, columns, rows, sums + x + part, first);
            if constexpr (std::is_signed_v<T>) {
                auto joined = first ? hn::Zero(dt) : hn::LoadU(dt, bits + x);
                for (std::size_t row = 0; row < rows; ++row)
                    joined = hn::Or(joined, hn::LoadU(dt, pixels + row * columns + x));
                hn::StoreU(joined, dt, bits + x);
            }
        },
        [&](std::size_t x) {
            Sum sum = first ? 0 : sums[x];
            T joined = first ? T(0) : bits[x];
            for (std::size_t row = 0; row < rows; ++row) {
                sum += static_cast<Sum>(pixels[row * columns + x]);
                joined = static_cast<T>(joined | pixels[row * columns + x]);
            }
            sums[x] = sum;
            bits[x] = joined;
        });
}

template <class T>
void addAll(const T* pixels, std::size_t columns, std::size_t rows, ColumnSum<T>* sums, T* bits)
{
    std::size_t y = 0;
    for (; y + Together <= rows; y += Together)
        addTogether(pixels + y * columns, columns, Together, y == 0, sums, bits);
    if (y < rows)
        addTogether(pixels + y * columns, columns, rows - y, y == 0, sums, bits);
}

/// Joins one row of bytes to others.
HWY_INLINE void joinRow(const std::uint8_t* in, std::size_t columns, std::uint8_t* out)
{
    constexpr std::size_t Group = 256;
    constexpr std::size_t Line = 64;
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto join = [&](std::size_t x) {
        hn::StoreU(hn::Or(hn::LoadU(d, out + x), hn::LoadU(d, in + x)), d, out + x);
    };
    std::size_t x = 0;
    for (; x + Group <= columns; x += Group) {
#pragma GCC unroll 4
        for (std::size_t line = x; line < x + Group; line += Line)
            __builtin_prefetch(in + line + 16384);
        auto any = hn::Zero(d);
#pragma GCC unroll 16
        for (std::size_t i = x; i < x + Group; i += lanes)
            any = hn::Or(any, hn::LoadU(d, in + i));
        // Most are 0, and nothing is written for them.
        if (!hn::AllTrue(d, hn::Eq(any, hn::Zero(d))))
            for (std::size_t i = x; i < x + Group; i += lanes)
                join(i);
    }
    for (; x + lanes <= columns; x += lanes)
        join(x);
    for (; x < columns; ++x)
        out[x] = static_cast<std::uint8_t>(out[x] | in[x]);
}

void joinAll(const std::byte* bytes, std::size_t columns, std::size_t rows, std::byte* bits)
{
    const auto* in = reinterpret_cast<const std::uint8_t*>(bytes);
    auto* out = reinterpret_cast<std::uint8_t*>(bits);
    std::fill_n(out, columns, std::uint8_t(0));
    // One row after the other: there is so little to compute that memory is fastest along one
    // stream.
    for (std::size_t y = 0; y < rows; ++y, in += columns)
        joinRow(in, columns, out);
}

#define TARVIK_ADD_ROWS(T, Name)                                                                   \
    void Name(const T* pixels, std::size_t columns, std::size_t rows, ColumnSum<T>* sums, T* bits) \
    {                                                                                              \
        addAll(pixels, columns, rows, sums, bits);                                                 \
    }
TARVIK_EACH_SUM(TARVIK_ADD_ROWS)
#undef TARVIK_ADD_ROWS

}  // namespace thumbnail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace thumbnail {

#define TARVIK_ADD_ROWS(T, Name)                                                                   \
    HWY_EXPORT(Name);                                                                              \
    template <>                                                                                    \
    void addRows(const T* pixels, std::size_t columns, std::size_t rows, ColumnSum<T>* sums,       \
                 T* bits)                                                                          \
    {                                                                                              \
        assert(rows > 0 && rows <= mostRows);                                                      \
        HWY_DYNAMIC_DISPATCH(Name)(pixels, columns, rows, sums, bits);                             \
    }
TARVIK_EACH_SUM(TARVIK_ADD_ROWS)
#undef TARVIK_ADD_ROWS

HWY_EXPORT(joinAll);

void joinRows(const std::byte* bytes, std::size_t columns, std::size_t rows, std::byte* bits)
{
    assert(rows > 0);
    HWY_DYNAMIC_DISPATCH(joinAll)(bytes, columns, rows, bits);
}

}  // namespace thumbnail

#endif
