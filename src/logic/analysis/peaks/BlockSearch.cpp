// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Comparison of whole blocks with a bound, for each instruction set.
#include "logic/analysis/peaks/BlockSearch.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/analysis/peaks/BlockSearch.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/cache_control.h>
#include <hwy/highway.h>

// Every search by its name and type of pixel.
#define PEAKS_SEARCHES(X)                                                                          \
    X(searchI8, std::int8_t)                                                                       \
    X(searchI16, std::int16_t)                                                                     \
    X(searchI32, std::int32_t)                                                                     \
    X(searchI64, std::int64_t)                                                                     \
    X(searchU8, std::uint8_t)                                                                      \
    X(searchU16, std::uint16_t)                                                                    \
    X(searchU32, std::uint32_t)                                                                    \
    X(searchU64, std::uint64_t)                                                                    \
    X(searchF32, float)                                                                            \
    X(searchF64, double)

HWY_BEFORE_NAMESPACE();
namespace peaks::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t CacheLine = 64;  // bytes
constexpr std::size_t PrefetchAhead = 4096;

template <class D, class V>
HWY_INLINE auto atLeast(D, V value, V bound)
{
    if constexpr (std::is_floating_point_v<hn::TFromD<D>>)
        return hn::Ge(value, bound);
    else
        return hn::Not(hn::Lt(value, bound));
}

template <class T>
HWY_INLINE bool anyInBlock(const T* block, T bound)
{
    const hn::ScalableTag<T> d;
    const auto limit = hn::Set(d, bound);
    auto any = atLeast(d, hn::LoadU(d, block), limit);
    for (std::size_t i = hn::Lanes(d); i < BlockSize; i += hn::Lanes(d))
        any = hn::Or(any, atLeast(d, hn::LoadU(d, block + i), limit));
    return !hn::AllFalse(d, any);
}

template <class T>
HWY_INLINE std::size_t search(const T* pixels, std::size_t begin, std::size_t size, T bound)
{
    constexpr std::size_t Ahead = PrefetchAhead / sizeof(T);
    std::size_t i = begin;
    for (; i + BlockSize <= size; i += BlockSize) {
        // The loop does so little per byte that the processor's own prefetch comes too late.
        if (i + Ahead + BlockSize <= size)
            for (std::size_t k = 0; k < BlockSize; k += CacheLine / sizeof(T))
                hwy::Prefetch(pixels + i + Ahead + k);
        if (anyInBlock(pixels + i, bound))
            return i;
    }
    for (std::size_t k = i; k < size; ++k)
        if (pixels[k] >= bound)
            return i;
    return size;
}

#define PEAKS_SEARCH(name, T)                                                                      \
    std::size_t name(const T* pixels, std::size_t begin, std::size_t size, T bound)                \
    {                                                                                              \
        return search(pixels, begin, size, bound);                                                 \
    }

PEAKS_SEARCHES(PEAKS_SEARCH)
#undef PEAKS_SEARCH

}  // namespace peaks::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace peaks {

#define PEAKS_NEXT_BLOCK(name, T)                                                                  \
    HWY_EXPORT(name);                                                                              \
    template <>                                                                                    \
    std::size_t nextBlock(const T* pixels, std::size_t begin, std::size_t size, T bound)           \
    {                                                                                              \
        return HWY_DYNAMIC_DISPATCH(name)(pixels, begin, size, bound);                             \
    }

PEAKS_SEARCHES(PEAKS_NEXT_BLOCK)
#undef PEAKS_NEXT_BLOCK

}  // namespace peaks
#endif
