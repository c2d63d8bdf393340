// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Stores without a fetch, with the widest vectors of the processor.
#include "imagelib/image/StreamCopy.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/image/StreamCopy.cpp"
#include <hwy/foreach_target.h>
// Highway asks for this order.
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace morvend::image::HWY_NAMESPACE {

/// Copies whole lines; returns their bytes.
std::size_t StreamLines([[maybe_unused]] const std::uint8_t* from,
                        [[maybe_unused]] std::uint8_t* to, [[maybe_unused]] std::size_t bytes)
{
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_SCALABLE
    return 0;
#else
    namespace hn = hwy::HWY_NAMESPACE;
    constexpr std::size_t Line = 64;
    const hn::CappedTag<std::uint8_t, Line> d;
    const std::size_t lines = bytes / Line * Line;
    for (std::size_t i = 0; i < lines; i += hn::Lanes(d))
        hn::Stream(hn::LoadU(d, from + i), d, to + i);
    return lines;
#endif
}

}  // namespace morvend::image::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace morvend::image {

HWY_EXPORT(StreamLines);

void streamCopy(const void* from, void* to, std::size_t bytes)
{
    const auto* source = static_cast<const std::uint8_t*>(from);
    auto* target = static_cast<std::uint8_t*>(to);
    const std::size_t done = HWY_DYNAMIC_DISPATCH(StreamLines)(source, target, bytes);
    std::memcpy(target + done, source + done, bytes - done);
}

void finishStreaming() { hwy::FlushStream(); }

}  // namespace morvend::image
#endif
