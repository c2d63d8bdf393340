// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Quicksort from one array into another and back, for each instruction set. Of Highway's own sort
// only the networks are used, which sort 16 vectors in registers: it compresses to memory, which
// AVX-512 processors of one maker do slower than anything else, and it pads with the highest finite
// number, which infinities don't survive.
#include "imagelib/image/VectorSort.h"

#include "imagelib/image/PixelBuffer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include <tbb/parallel_invoke.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/image/VectorSort.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
// clang-format off
#include <hwy/highway.h>
#include <hwy/contrib/sort/traits-inl.h>
#include <hwy/contrib/sort/sorting_networks-inl.h>
// clang-format on

#include "imagelib/image/PackLanes-inl.h"

// The types that are sorted by vectors, for each pass over this file.
#undef TARVIK_SORTS
#define TARVIK_SORTS(Sort)                                                                         \
    Sort(sortInt, std::int32_t) Sort(sortUnsigned, std::uint32_t) Sort(sortLong, std::int64_t)     \
        Sort(sortUnsignedLong, std::uint64_t) Sort(sortFloat, float) Sort(sortDouble, double)

HWY_BEFORE_NAMESPACE();
namespace morvend::image::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

template <class T>
void sortAll(T* values, T*, std::size_t count)
{
    std::sort(values, values + count);
}

#else

using tarvik_simd::HWY_NAMESPACE::laneBits;
using tarvik_simd::HWY_NAMESPACE::partLanes;

/// Least length of a range that is worth its own task.
constexpr std::size_t TaskSize = 1 << 16;
/// A split is bad if one side has less than one part in this many.
constexpr std::size_t LeastShare = 16;

/// The value in the middle of the values of the type between two that differ: above the lower one,
/// and at most the upper one.
template <class T>
T middle(T lowest, T highest)
{
    if constexpr (std::is_floating_point_v<T>) {
        // Signed integers in the order of the numbers; their only equal neighbours are the zeros.
        using Key = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
        const auto flipped = [](Key bits) {
            return bits < 0 ? bits ^ std::numeric_limits<Key>::max() : bits;
        };
        return std::bit_cast<T>(flipped(
            middle(flipped(std::bit_cast<Key>(lowest)), flipped(std::bit_cast<Key>(highest)))));
    } else {
        using Unsigned = std::make_unsigned_t<T>;
        const auto distance =
            static_cast<Unsigned>(static_cast<Unsigned>(highest) - static_cast<Unsigned>(lowest));
        return static_cast<T>(static_cast<Unsigned>(lowest) + distance / 2 + 1);
    }
}

template <class T>
class Quicksort {
public:
    /// Sorts values into the memory where they are or into the other one; both are overwritten.
    static void sort(T* values, T* other, std::size_t count, bool intoOther, bool badSplit)
    {
        if (count <= Smallest)
            return _sortFew(values, count, intoOther ? other : values);
        const std::optional<T> pivot = _pivot(values, count, badSplit);
        if (!pivot) {
            if (intoOther)
                std::copy_n(values, count, other);
            return;
        }
        const std::size_t low = _part(values, count, *pivot, other);
        const bool bad = std::min(low, count - low) < count / LeastShare;
        const auto sortLow = [=] { sort(other, values, low, !intoOther, bad); };
        const auto sortHigh = [=] {
            sort(other + low, values + low, count - low, !intoOther, bad);
        };
        if (count >= TaskSize) {
            tbb::parallel_invoke(sortLow, sortHigh);
        } else {
            sortLow();
            sortHigh();
        }
    }

private:
    using D = hn::ScalableTag<T>;
    static constexpr std::size_t Lanes = hn::MaxLanes(D());
    static constexpr std::size_t Rows = 16;
    static constexpr std::size_t Smallest = Rows * Lanes;
    static constexpr T Last = std::numeric_limits<T>::has_infinity
                                  ? std::numeric_limits<T>::infinity()
                                  : std::numeric_limits<T>::max();

    /// Sorts a matrix of 16 rows and at most as many columns as lanes; one vector after it is
    /// written.
    static void _sortMatrix(T* matrix, std::size_t columns)
    {
        using Ascending = hn::detail::TraitsLane<hn::detail::OrderAscending<T>>;
        hn::detail::SortingNetwork(hn::detail::SharedTraits<Ascending>(), matrix, columns);
    }

    static void _sortFew(const T* values, std::size_t count, T* target)
    {
        alignas(64) std::array<T, Smallest + Lanes> matrix;
        const std::size_t columns = std::max<std::size_t>(std::bit_ceil(count) / Rows, 1);
        std::copy_n(values, count, matrix.begin());
        std::fill(matrix.begin() + count, matrix.begin() + columns * Rows, Last);
        _sortMatrix(matrix.data(), columns);
        std::copy_n(matrix.begin(), count, target);
    }

    /// A value that is above some of the values and not above others; empty when all are equal.
    static std::optional<T> _pivot(const T* values, std::size_t count, bool badSplit)
    {
        std::optional<T> pivot;
        // A bad split is followed by one of the range of values, so that no order of pixels can
        // cause many of them.
        if (!badSplit)
            pivot = count < 64 * Smallest
                        ? _median<Rows>(values, count)
                        : _median<std::min<std::size_t>(64, Smallest)>(values, count);
        if (pivot)
            return pivot;
        const auto [lowest, highest] = _range(values, count);
        if (lowest == highest)
            return std::nullopt;
        return middle(lowest, highest);
    }

    /// The median of some values, or the next one above it among them where it is the lowest.
    template <std::size_t Some>
    static std::optional<T> _median(const T* values, std::size_t count)
    {
        alignas(64) std::array<T, Some + Lanes> some;
        for (std::size_t i = 0; i < Some; ++i)
            some[i] = values[(2 * i + 1) * count / (2 * Some)];
        _sortMatrix(some.data(), Some / Rows);
        const auto end = some.cbegin() + Some;
        auto pivot = some.cbegin() + Some / 2;
        if (!(*pivot > some[0]))
            pivot = std::upper_bound(pivot, end, *pivot);
        return pivot == end ? std::nullopt : std::optional(*pivot);
    }

    static std::pair<T, T> _range(const T* values, std::size_t count)
    {
        const D d;
        auto lowest = hn::LoadU(d, values + count - Lanes);
        auto highest = lowest;
        for (std::size_t i = 0; i + Lanes <= count; i += Lanes) {
            const auto v = hn::LoadU(d, values + i);
            lowest = hn::Min(lowest, v);
            highest = hn::Max(highest, v);
        }
        return {hn::GetLane(hn::MinOfLanes(d, lowest)), hn::GetLane(hn::MaxOfLanes(d, highest))};
    }

    /// Writes the values below the pivot from the start of the target on, the others towards its
    /// end. Returns how many are below.
    static std::size_t _part(const T* values, std::size_t count, T pivot, T* target)
    {
        T* low = target;
        T* high = target + count;
        std::size_t i = 0;
        for (; i < count % Lanes; ++i) {
            const bool below = values[i] < pivot;
            *low = values[i];
            low += below;
            *(high - 1) = values[i];
            high -= !below;
        }
        // What is left is a number of whole vectors, and so is the room between both ends: either
        // there is room for two, or both stores write the same.
        const D d;
        const auto pivots = hn::Set(d, pivot);
        for (; i < count; i += Lanes) {
            const auto v = hn::LoadU(d, values + i);
            const auto below = hn::Lt(v, pivots);
            const std::size_t bits = laneBits(d, below);
            const auto number = static_cast<std::size_t>(std::popcount(bits));
            const auto parted = partLanes(d, v, below, bits, number);
            hn::StoreU(parted, d, low);
            low += number;
            hn::StoreU(parted, d, high - Lanes);
            high -= Lanes - number;
        }
        return static_cast<std::size_t>(low - target);
    }
};

template <class T>
void sortAll(T* values, T* scratch, std::size_t count)
{
    Quicksort<T>::sort(values, scratch, count, false, false);
}

#endif

#define TARVIK_SORT(Name, T)                                                                       \
    void Name(T* values, T* scratch, std::size_t count) { sortAll(values, scratch, count); }
TARVIK_SORTS(TARVIK_SORT)
#undef TARVIK_SORT

}  // namespace morvend::image::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace morvend::image {

#define TARVIK_SORT(Name, T)                                                                       \
    HWY_EXPORT(Name);                                                                              \
    template <>                                                                                    \
    void vectorSort(T* values, std::size_t count)                                                  \
    {                                                                                              \
        const PixelBufferPtr scratch = PixelBuffer::allocate(count * sizeof(T));                   \
        HWY_DYNAMIC_DISPATCH(Name)(values, reinterpret_cast<T*>(scratch->data()), count);          \
    }
TARVIK_SORTS(TARVIK_SORT)
#undef TARVIK_SORT

}  // namespace morvend::image
#endif
