// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte order and the search for flags, with the best vector instructions of the processor.
#include "imagelib/io/formats/base/RawPixels.h"

#include "imagelib/image/Assert.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imagelib/io/formats/base/RawPixels.cpp"
#include <hwy/foreach_target.h>
// Highway asks for this order.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace morvend::imglib::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Swaps whole vectors, returns the number of bytes done.
std::size_t SwapVectors(std::uint8_t* bytes, std::size_t count, std::size_t valueBytes)
{
    std::size_t done = 0;
#if HWY_TARGET != HWY_SCALAR
    alignas(16) std::uint8_t order[16];
    for (std::size_t i = 0; i < 16; ++i)
        order[i] = static_cast<std::uint8_t>(i ^ (valueBytes - 1));
    const hn::ScalableTag<std::uint8_t> d;
    const auto pattern = hn::LoadDup128(d, order);
    const std::size_t step = hn::Lanes(d);
    for (; done + step <= count; done += step)
        hn::StoreU(hn::TableLookupBytes(hn::LoadU(d, bytes + done), pattern), d, bytes + done);
#else
    static_cast<void>(bytes);
    static_cast<void>(count);
    static_cast<void>(valueBytes);
#endif
    return done;
}

std::int32_t LowestSigned(const std::int32_t* values, std::size_t count)
{
    const hn::ScalableTag<std::int32_t> d;
    const std::size_t step = hn::Lanes(d);
    auto lowest0 = hn::Zero(d);
    auto lowest1 = hn::Zero(d);
    std::size_t i = 0;
    for (; i + 2 * step <= count; i += 2 * step) {
        lowest0 = hn::Min(lowest0, hn::LoadU(d, values + i));
        lowest1 = hn::Min(lowest1, hn::LoadU(d, values + i + step));
    }
    std::int32_t lowest = hn::GetLane(hn::MinOfLanes(d, hn::Min(lowest0, lowest1)));
    for (; i < count; ++i)
        lowest = std::min(lowest, values[i]);
    return lowest;
}

}  // namespace morvend::imglib::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace morvend::imglib {

HWY_EXPORT(SwapVectors);
HWY_EXPORT(LowestSigned);

void swapByteOrder(std::span<std::byte> bytes, std::size_t valueBytes)
{
    assert(valueBytes == 1 || valueBytes == 2 || valueBytes == 4 || valueBytes == 8);
    if (valueBytes == 1)
        return;
    const std::size_t done = HWY_DYNAMIC_DISPATCH(SwapVectors)(
        reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size(), valueBytes);
    for (std::size_t at = done; at + valueBytes <= bytes.size(); at += valueBytes)
        std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                     bytes.begin() + static_cast<std::ptrdiff_t>(at + valueBytes));
}

std::int32_t lowestSigned(std::span<const std::int32_t> values)
{
    return HWY_DYNAMIC_DISPATCH(LowestSigned)(values.data(), values.size());
}

std::size_t readPixels(const ByteSource& source, std::uint64_t offset, std::span<std::byte> target,
                       std::size_t swapBytes)
{
    if (swapBytes <= 1)
        return source.readSome(offset, target.data(), target.size());
    return readInPieces(source, offset, target,
                        [&](std::span<std::byte> piece) { swapByteOrder(piece, swapBytes); });
}

}  // namespace morvend::imglib

#endif
