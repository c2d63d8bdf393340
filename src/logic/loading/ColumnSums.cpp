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

HWY_BEFORE_NAMESPACE();
namespace thumbnail::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The hardware prefetcher alone stays behind.
HWY_INLINE void fetchAhead(const void* place)
{
    __builtin_prefetch(static_cast<const char*>(place) + 4096);
}

/// The pixels of two neighbouring rows at a time: half the traffic to and from the sums.
template <class T>
void addPair(const T* upper, const T* lower, std::size_t columns, bool first, ColumnSum<T>* sums,
             T* bits)
{
    using Sum = ColumnSum<T>;
    using Wide = std::conditional_t<std::is_signed_v<T> || sizeof(T) < 4, Sum, std::uint64_t>;
    const hn::ScalableTag<Sum> ds;
    const hn::ScalableTag<Wide> dw;
    const hn::Rebind<T, decltype(ds)> dt;
    const std::size_t lanes = hn::Lanes(ds);
    const auto widen = [&](auto pixels) { return hn::BitCast(ds, hn::PromoteTo(dw, pixels)); };
    std::size_t x = 0;
    for (; x + lanes <= columns; x += lanes) {
        fetchAhead(upper + x);
        fetchAhead(lower + x);
        const auto above = hn::LoadU(dt, upper + x);
        const auto below = hn::LoadU(dt, lower + x);
        auto sum = hn::Add(widen(above), widen(below));
        auto joined = hn::Or(above, below);
        if (!first) {
            sum = hn::Add(sum, hn::LoadU(ds, sums + x));
            joined = hn::Or(joined, hn::LoadU(dt, bits + x));
        }
        hn::StoreU(sum, ds, sums + x);
        hn::StoreU(joined, dt, bits + x);
    }
    for (; x < columns; ++x) {
        sums[x] = (first ? 0 : sums[x]) + static_cast<Sum>(upper[x]) + static_cast<Sum>(lower[x]);
        bits[x] = static_cast<T>((first ? 0 : bits[x]) | upper[x] | lower[x]);
    }
}

template <class T>
void addAll(const T* pixels, std::size_t columns, std::size_t rows, ColumnSum<T>* sums, T* bits)
{
    const std::size_t odd = rows % 2;
    if (odd) {
        std::copy_n(pixels, columns, sums);
        std::copy_n(pixels, columns, bits);
    }
    for (std::size_t y = odd; y < rows; y += 2)
        addPair(pixels + y * columns, pixels + (y + 1) * columns, columns, y == 0, sums, bits);
}

void joinAll(const std::byte* bytes, std::size_t columns, std::size_t rows, std::byte* bits)
{
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto* in = reinterpret_cast<const std::uint8_t*>(bytes);
    auto* out = reinterpret_cast<std::uint8_t*>(bits);
    std::copy_n(in, columns, out);
    for (std::size_t y = 1; y < rows; ++y) {
        const std::uint8_t* row = in + y * columns;
        std::size_t x = 0;
        for (; x + lanes <= columns; x += lanes) {
            fetchAhead(row + x);
            hn::StoreU(hn::Or(hn::LoadU(d, row + x), hn::LoadU(d, out + x)), d, out + x);
        }
        for (; x < columns; ++x)
            out[x] = static_cast<std::uint8_t>(out[x] | row[x]);
    }
}

#define TARVIK_ADD_ROWS(T, Name)                                                                   \
    void Name(const T* pixels, std::size_t columns, std::size_t rows, ColumnSum<T>* sums, T* bits) \
    {                                                                                              \
        addAll(pixels, columns, rows, sums, bits);                                                 \
    }
TARVIK_ADD_ROWS(std::int8_t, addInt8)
TARVIK_ADD_ROWS(std::int16_t, addInt16)
TARVIK_ADD_ROWS(std::int32_t, addInt32)
TARVIK_ADD_ROWS(std::uint8_t, addUInt8)
TARVIK_ADD_ROWS(std::uint16_t, addUInt16)
TARVIK_ADD_ROWS(std::uint32_t, addUInt32)
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
TARVIK_ADD_ROWS(std::int8_t, addInt8)
TARVIK_ADD_ROWS(std::int16_t, addInt16)
TARVIK_ADD_ROWS(std::int32_t, addInt32)
TARVIK_ADD_ROWS(std::uint8_t, addUInt8)
TARVIK_ADD_ROWS(std::uint16_t, addUInt16)
TARVIK_ADD_ROWS(std::uint32_t, addUInt32)
#undef TARVIK_ADD_ROWS

HWY_EXPORT(joinAll);

void joinRows(const std::byte* bytes, std::size_t columns, std::size_t rows, std::byte* bits)
{
    assert(rows > 0);
    HWY_DYNAMIC_DISPATCH(joinAll)(bytes, columns, rows, bits);
}

}  // namespace thumbnail

#endif
