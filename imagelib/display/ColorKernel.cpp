// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector loops from intensities to colours, for each instruction set.
#include "imagelib/display/ColorKernel.h"

#include "imagelib/image/MaskBits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/display/ColorKernel.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which may include this file again for each instruction set.
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace morvend::imglib::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// i - background as a float, for an i above the background. Integers are subtracted exactly.
template <class T, class V>
HWY_INLINE auto distance(V pixels, V background)
{
    const hn::ScalableTag<float> df;
    if constexpr (std::is_same_v<T, float>) {
        return hn::Sub(pixels, background);
    } else {
        const hn::RebindToUnsigned<decltype(df)> du;
        return hn::ConvertTo(df, hn::BitCast(du, hn::Sub(pixels, background)));
    }
}

/// The lanes at or above a limit; NaN never is.
template <class V>
HWY_INLINE auto atLeast(V value, V limit)
{
    if constexpr (std::is_same_v<hn::TFromV<V>, float>)
        return hn::Ge(value, limit);
    else
        return hn::Not(hn::Lt(value, limit));
}

template <class T>
class Colors {
public:
    explicit Colors(const ColorRule<T>& rule)
        : _rule(rule)
        , _colors(rule.colors.data())
        , _bins(rule.bins.data())
    {}

    /// Colours one vector of pixels.
    HWY_INLINE void operator()(const T* pixels, const std::uint32_t* mask,
                               std::uint32_t* colors) const
    {
        const auto value = hn::LoadU(_d, pixels);
        const auto flags = mask ? hn::LoadU(_du, mask) : hn::Zero(_du);
        const auto flagged =
            hn::Ne(hn::And(flags, hn::Set(_du, maskrule::Excluding)), hn::Zero(_du));
        const auto special = atLeast(value, hn::Set(_d, _rule.special));
        const bool plain = hn::AllFalse(_du, flagged) && hn::AllFalse(_d, special);
        const auto index = HWY_LIKELY(plain) ? _weak(value) : _any(value, flags);
        hn::StoreU(hn::GatherIndex(_du, _colors, hn::BitCast(_di, index)), _du, colors);
    }

private:
    /// Pixels of the linear part and below, without flags: most vectors hold nothing else.
    template <class V>
    HWY_INLINE auto _weak(V value) const
    {
        const auto background = hn::Set(_d, _rule.background);
        auto far = hn::Sub(value, background);
        if constexpr (std::is_same_v<T, float>)
            return _linear(value, far);
        else  // below `special` the distance fits into a signed integer
            return _linear(value, hn::ConvertTo(_df, hn::BitCast(_di, far)));
    }

    template <class V, class F>
    HWY_INLINE auto _linear(V value, F far) const
    {
        // Clamped before the conversion: lanes that don't belong to the linear part may hold
        // anything.
        const auto place = hn::Min(hn::Mul(hn::Set(_df, _rule.slope), far),
                                   hn::Set(_df, static_cast<float>(_rule.lastLinear)));
        const auto above = hn::RebindMask(_du, hn::Gt(value, hn::Set(_d, _rule.background)));
        return hn::IfThenElseZero(above, hn::BitCast(_du, hn::ConvertTo(_di, place)));
    }

    template <class V, class M>
    HWY_INLINE auto _any(V value, M flags) const
    {
        const auto far = distance<T>(value, hn::Set(_d, _rule.background));
        const auto bright = hn::RebindMask(_du, atLeast(value, hn::Set(_d, _rule.foreground)));
        const auto top = hn::RebindMask(_du, atLeast(value, hn::Set(_d, _rule.top)));
        auto index = hn::IfThenElse(bright, _logarithmic(far), _linear(value, far));
        index = hn::IfThenElse(top, hn::Set(_du, _rule.topColor), index);
        if (_rule.highlightSaturated) {
            const auto saturated = hn::RebindMask(_du, atLeast(value, hn::Set(_d, _rule.cutoff)));
            index = hn::IfThenElse(saturated, hn::Set(_du, _rule.saturatedColor), index);
        }
        return _byMask(flags, index);
    }

    template <class V>
    HWY_INLINE auto _logarithmic(V far) const
    {
        const auto bits = hn::BitCast(_du, far);
        const auto lastBin = static_cast<std::uint32_t>(_rule.bins.size() - 1);
        // The minimum keeps lanes outside the logarithmic part within the table.
        const auto bin =
            hn::Min(hn::Sub(hn::ShiftRightSame(bits, _rule.binShift), hn::Set(_du, _rule.firstBin)),
                    hn::Set(_du, lastBin));
        const auto packed = hn::GatherIndex(_du, _bins, hn::BitCast(_di, bin));
        const auto low = hn::And(bits, hn::Set(_du, (1U << _rule.binShift) - 1));
        const auto beyond = hn::Gt(low, hn::And(packed, hn::Set(_du, 0xffffU)));
        return hn::Add(hn::ShiftRight<16>(packed), hn::IfThenElseZero(beyond, hn::Set(_du, 1U)));
    }

    template <class V>
    HWY_INLINE V _byMask(V mask, V index) const
    {
        const auto black = hn::TestBit(mask, hn::Set(_du, 1U));
        index = hn::IfThenElse(black, hn::Set(_du, _rule.black), index);
        const auto good = hn::Eq(hn::And(mask, hn::Set(_du, _rule.defectiveBits)), hn::Zero(_du));
        return hn::IfThenElse(good, index, hn::Set(_du, _rule.defectiveColor));
    }

    const hn::ScalableTag<T> _d{};
    const hn::ScalableTag<float> _df{};
    const hn::ScalableTag<std::uint32_t> _du{};
    const hn::ScalableTag<std::int32_t> _di{};
    const ColorRule<T>& _rule;
    const std::uint32_t* _colors;
    const std::uint32_t* _bins;
};

template <class T>
HWY_INLINE void colorRun(const ColorRule<T>& rule, const T* pixels, const std::uint32_t* mask,
                         std::uint32_t* colors, std::size_t size)
{
    const Colors<T> color(rule);
    const std::size_t lanes = hn::Lanes(hn::ScalableTag<T>());
    std::size_t i = 0;
    for (; i + lanes <= size; i += lanes) {
        // One stream after the other would outrun the hardware prefetcher.
        hwy::Prefetch(pixels + i + 1024);
        if (mask)
            hwy::Prefetch(mask + i + 1024);
        __builtin_prefetch(colors + i + 1024, 1);
        color(pixels + i, mask ? mask + i : nullptr, colors + i);
    }
    if (i < size) {
        T pixelEnd[hn::MaxLanes(hn::ScalableTag<T>())] = {};
        std::uint32_t maskEnd[hn::MaxLanes(hn::ScalableTag<T>())] = {};
        std::uint32_t colorEnd[hn::MaxLanes(hn::ScalableTag<T>())];
        std::copy(pixels + i, pixels + size, pixelEnd);
        if (mask)
            std::copy(mask + i, mask + size, maskEnd);
        color(pixelEnd, maskEnd, colorEnd);
        std::copy(colorEnd, colorEnd + (size - i), colors + i);
    }
}

void colorInt(const ColorRule<int>& rule, const int* pixels, const std::uint32_t* mask,
              std::uint32_t* colors, std::size_t size)
{
    colorRun(rule, pixels, mask, colors, size);
}

void colorUnsigned(const ColorRule<unsigned>& rule, const unsigned* pixels,
                   const std::uint32_t* mask, std::uint32_t* colors, std::size_t size)
{
    colorRun(rule, pixels, mask, colors, size);
}

void colorFloat(const ColorRule<float>& rule, const float* pixels, const std::uint32_t* mask,
                std::uint32_t* colors, std::size_t size)
{
    colorRun(rule, pixels, mask, colors, size);
}

}  // namespace morvend::imglib::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace morvend::imglib {

HWY_EXPORT(colorInt);
HWY_EXPORT(colorUnsigned);
HWY_EXPORT(colorFloat);

template <>
void colorPixels(const ColorRule<int>& rule, const int* pixels, const std::uint32_t* mask,
                 std::uint32_t* colors, std::size_t size)
{
    HWY_DYNAMIC_DISPATCH(colorInt)(rule, pixels, mask, colors, size);
}

template <>
void colorPixels(const ColorRule<unsigned>& rule, const unsigned* pixels, const std::uint32_t* mask,
                 std::uint32_t* colors, std::size_t size)
{
    HWY_DYNAMIC_DISPATCH(colorUnsigned)(rule, pixels, mask, colors, size);
}

template <>
void colorPixels(const ColorRule<float>& rule, const float* pixels, const std::uint32_t* mask,
                 std::uint32_t* colors, std::size_t size)
{
    HWY_DYNAMIC_DISPATCH(colorFloat)(rule, pixels, mask, colors, size);
}

}  // namespace morvend::imglib
#endif
