// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Blocks of differences from the mean of the neighbours that came before.
#include "imagelib/io/formats/cbf/Packed.h"

#include "imagelib/image/Assert.h"
#include "imagelib/io/formats/cbf/BitReader.h"

#include <array>
#include <type_traits>

namespace morvend::imglib {

namespace {

constexpr std::size_t HeadBytes = 32;
constexpr unsigned Full = 255;  // the width of a pixel, or 65 in flat streams
constexpr unsigned FullOfFlat = 65;
constexpr std::array<unsigned, 8> Widths1{0, 4, 5, 6, 7, 8, 16, Full};
constexpr std::array<unsigned, 16> Widths2{0,  3,  4,  5,  6,  7,  8,  9,
                                           10, 11, 12, 13, 14, 15, 16, Full};

/// Hands out the differences one by one.
class Differences {
public:
    Differences(std::span<const std::byte> packed, const PackedLayout& layout, unsigned pixelBits)
        : _bits(packed)
        , _version2(layout.version2)
        , _full(layout.flat ? FullOfFlat : pixelBits)
    {}

    bool next(std::int64_t& difference)
    {
        if (_left == 0) {
            std::uint64_t head = 0;
            if (!_bits.take(_version2 ? 7 : 6, head))
                return false;
            _left = std::size_t(1) << (head & 7);
            _width = _version2 ? Widths2[head >> 3] : Widths1[head >> 3];
            if (_width == Full)
                _width = _full;
        }
        --_left;
        return _bits.takeSigned(_width, difference);
    }

private:
    BitReader _bits;
    bool _version2;
    unsigned _full;
    std::size_t _left = 0;  // in this block
    unsigned _width = 0;    // of each, in bits
};

/// What a pixel is expected to be: the mean of its neighbours to the left and in the row above, in
/// this section and in the one before. At the rims there are fewer of them.
template <class T>
class Prediction {
public:
    Prediction(const PackedLayout& layout, const T* pixels)
        : _layout(layout)
        , _pixels(pixels)
    {}

    /// For pixel `i`, column `x` of row `y` in section `z`.
    std::int64_t at(std::size_t i, std::size_t x, std::size_t y, std::size_t z) const
    {
        if (i == 0)
            return 0;
        const std::size_t width = _layout.fast;
        if (_layout.flat)
            return value(i - 1);
        if (y == 0)
            return x > 0 ? value(i - 1) : value(i - width * _layout.second);
        const Rim rim{x > 0, x + 1 < width};
        std::uint64_t sum = around(i, i - 1, rim);
        unsigned shift = rim.left && rim.right ? 2 : 1;
        if (z > 0 && !_layout.uncorrelatedSections) {
            const std::size_t before = i - width * _layout.second;
            sum += around(before, before, rim);
            ++shift;
        }
        return mean(sum, shift);
    }

private:
    /// Which neighbours a pixel has in its row.
    struct Rim {
        bool left;
        bool right;
    };

    /// Sums wrap around as signed numbers of the pixel's width, also for unsigned pixels. Half a
    /// step is then added in 32 bits, so that it wraps around for 4-byte pixels only.
    static std::int64_t mean(std::uint64_t sum, unsigned shift)
    {
        const auto wrapped = static_cast<std::uint64_t>(static_cast<std::make_signed_t<T>>(sum));
        const std::uint64_t half = std::uint64_t(1) << (shift - 1);
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(wrapped + half)) >> shift;
    }

    std::int64_t value(std::size_t i) const { return static_cast<std::int64_t>(_pixels[i]); }

    /// Sum of the neighbours in the row above and of one beside the pixel; of two at a rim.
    std::uint64_t around(std::size_t i, std::size_t beside, Rim rim) const
    {
        const std::size_t up = i - _layout.fast;
        const auto bits = [this](std::size_t at) { return static_cast<std::uint64_t>(value(at)); };
        if (rim.left && rim.right)
            return bits(beside) + bits(up - 1) + bits(up) + bits(up + 1);
        return bits(up) + bits(rim.left ? beside : up + 1);
    }

    const PackedLayout& _layout;
    const T* _pixels;
};

template <class T>
std::size_t unpackAs(std::span<const std::byte> packed, const PackedLayout& layout,
                     std::span<std::byte> bytes)
{
    auto* pixels = reinterpret_cast<T*>(bytes.data());
    const std::size_t count = bytes.size() / sizeof(T);
    Differences differences(packed.subspan(HeadBytes), layout, 8 * sizeof(T));
    const Prediction<T> prediction(layout, pixels);
    std::size_t i = 0;
    for (std::size_t z = 0; i < count; ++z) {
        for (std::size_t y = 0; y < layout.second && i < count; ++y) {
            for (std::size_t x = 0; x < layout.fast && i < count; ++x, ++i) {
                std::int64_t difference = 0;
                if (!differences.next(difference))
                    return i;
                const auto expected = static_cast<std::uint64_t>(prediction.at(i, x, y, z));
                pixels[i] = static_cast<T>(expected + static_cast<std::uint64_t>(difference));
            }
        }
    }
    return i;
}

}  // namespace

std::uint64_t mostPackedPixels(std::span<const std::byte> packed)
{
    if (packed.size() <= HeadBytes)
        return 0;
    // A block of 128 equal pixels takes 6 bits.
    return (packed.size() - HeadBytes) * std::uint64_t(8) / 6 * 128;
}

std::size_t unpackPacked(std::span<const std::byte> packed, const PackedLayout& layout,
                         std::size_t pixelBytes, std::span<std::byte> pixels)
{
    assert(layout.fast > 0 && layout.second > 0);
    assert(layout.flat || layout.fast > 1 || layout.second == 1);
    if (packed.size() < HeadBytes)
        return 0;
    switch (pixelBytes) {
    case 1:
        return layout.isUnsigned ? unpackAs<std::uint8_t>(packed, layout, pixels)
                                 : unpackAs<std::int8_t>(packed, layout, pixels);
    case 2:
        return layout.isUnsigned ? unpackAs<std::uint16_t>(packed, layout, pixels)
                                 : unpackAs<std::int16_t>(packed, layout, pixels);
    default:
        assert(pixelBytes == 4);
        return layout.isUnsigned ? unpackAs<std::uint32_t>(packed, layout, pixels)
                                 : unpackAs<std::int32_t>(packed, layout, pixels);
    }
}

}  // namespace morvend::imglib
