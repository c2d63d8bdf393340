// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Codes that set the width of differences, and the differences.
#include "imagelib/io/formats/cbf/NibbleOffset.h"

#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/BitReader.h"

#include <array>

namespace morvend::imglib {

namespace {

constexpr std::array<unsigned, 7> Widths{2, 4, 6, 8, 12, 16, 32};
constexpr std::size_t NoWidth = Widths.size();

/// Hands out the sums of differences one by one.
class Sums {
public:
    explicit Sums(std::span<const std::byte> packed)
        : _bits(packed)
    {}

    /// The next sum; false when the stream has ended.
    bool next(std::uint64_t& sum)
    {
        if (_width == NoWidth && !takeCode())
            return false;
        std::int64_t difference = 0;
        // The lowest number of each width is not a difference: it says that a code follows.
        for (;;) {
            const unsigned bits = Widths[_width];
            if (!_bits.takeSigned(bits, difference))
                return false;
            if (difference != -(std::int64_t(1) << (bits - 1)))
                break;
            if (!takeCode())
                return false;
        }
        _width = _lasting;
        _sum += static_cast<std::uint64_t>(difference);
        sum = _sum;
        return true;
    }

private:
    /// Reads codes until there is a width; false when the stream has ended.
    bool takeCode()
    {
        std::uint64_t code = 0;
        do {
            if (!_bits.take(2, code))
                return false;
            if (code == 2)
                use(2);
            else if (code == 0 ? !takeLongCode() : !takeStep(code))
                return false;
        } while (_width == NoWidth);
        return true;
    }

    /// Widens only the next difference, by one width (code 1) or by some (code 3).
    bool takeStep(std::uint64_t code)
    {
        std::uint64_t steps = 1;
        if (code == 3) {
            if (!_bits.take(2, steps))
                return false;
            steps += 2;
        }
        if (_width == NoWidth)
            return true;  // padding after a reset
        _width += static_cast<std::size_t>(steps);
        if (_width >= Widths.size())
            refuseWide();
        return true;
    }

    bool takeLongCode()
    {
        std::uint64_t code = 0;
        if (!_bits.take(2, code))
            return false;
        if (code != 0) {
            constexpr std::array<unsigned, 4> Short{0, 4, 8, 6};
            use(Short[code]);
            return true;
        }
        if (!_bits.take(4, code))
            return false;
        switch (code) {
        case 0:
            _width = _lasting = NoWidth;
            _sum = 0;
            return true;
        case 1:
        case 2:
            use(static_cast<unsigned>(16 * code));
            return true;
        case 3:
            use(12);
            return true;
        case 4:
            refuseWide();
        case 12:
            throw MRuntimeException("nibble-offset pixels with addresses are not read");
        default:
            throw MRuntimeException("the code " + std::to_string(code) +
                                    " has no meaning in nibble-offset pixels");
        }
    }

    void use(unsigned bits)
    {
        _width = 0;
        while (Widths[_width] != bits)
            ++_width;
        _lasting = _width;
    }

    [[noreturn]] static void refuseWide()
    {
        throw MRuntimeException("nibble-offset pixels with steps of 64 bits are not read, because "
                                "writers of CBF lose a part of them");
    }

    BitReader _bits;
    std::size_t _width = NoWidth;    // of the next difference
    std::size_t _lasting = NoWidth;  // of those after it
    std::uint64_t _sum = 0;
};

template <class T>
std::size_t unpackAs(std::span<const std::byte> packed, std::span<std::byte> bytes)
{
    auto* pixels = reinterpret_cast<T*>(bytes.data());
    const std::size_t count = bytes.size() / sizeof(T);
    Sums sums(packed);
    std::size_t i = 0;
    for (std::uint64_t sum = 0; i < count && sums.next(sum); ++i)
        pixels[i] = static_cast<T>(sum);
    return i;
}

}  // namespace

std::uint64_t mostNibbleOffsetPixels(std::span<const std::byte> packed)
{
    return packed.size() * std::uint64_t(4);
}

std::size_t unpackNibbleOffset(std::span<const std::byte> packed, std::size_t pixelBytes,
                               std::span<std::byte> pixels)
{
    switch (pixelBytes) {
    case 1:
        return unpackAs<std::uint8_t>(packed, pixels);
    case 2:
        return unpackAs<std::uint16_t>(packed, pixels);
    case 4:
        return unpackAs<std::uint32_t>(packed, pixels);
    default:
        assert(pixelBytes == 8);
        return unpackAs<std::uint64_t>(packed, pixels);
    }
}

}  // namespace morvend::imglib
