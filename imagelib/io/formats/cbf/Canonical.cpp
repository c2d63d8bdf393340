// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Canonical codes of Moffat and Turpin, built from their lengths alone.
#include "imagelib/io/formats/cbf/Canonical.h"

#include "imagelib/image/Assert.h"
#include "imagelib/io/formats/cbf/BitReader.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

namespace morvend::imglib {

namespace {

constexpr std::size_t HeadBytes = 32;
constexpr unsigned LongestCode = 64;

/// Codes of one length follow each other in the order of their symbols; shorter codes come after
/// the prefixes of longer ones.
class CodeTable {
public:
    /// @param lengths  bits of the code of each symbol, 0 for one without a code
    explicit CodeTable(std::span<const std::byte> lengths)
    {
        for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
            const auto bits = std::to_integer<unsigned>(lengths[symbol]);
            if (bits > LongestCode)
                return;  // an unusable table has no codes
            if (bits > 0)
                _symbols[bits].push_back(static_cast<std::uint32_t>(symbol));
        }
        std::uint64_t next = 0;
        for (unsigned bits = LongestCode; bits > 0; --bits) {
            _first[bits] = next;
            next = (next + _symbols[bits].size() + 1) / 2;
        }
        _usable = true;
    }

    bool take(BitReader& bits, std::uint32_t& symbol) const
    {
        std::uint64_t code = 0;
        for (unsigned length = 1; _usable && length <= LongestCode; ++length) {
            std::uint64_t bit = 0;
            if (!bits.take(1, bit))
                return false;
            code = code << 1 | bit;
            const auto& symbols = _symbols[length];
            if (code >= _first[length] && code - _first[length] < symbols.size()) {
                symbol = symbols[static_cast<std::size_t>(code - _first[length])];
                return true;
            }
        }
        return false;
    }

private:
    bool _usable = false;
    std::vector<std::uint32_t> _symbols[LongestCode + 1];  // by length of their codes
    std::uint64_t _first[LongestCode + 1] = {};            // code of each length
};

/// How the stream writes differences: symbols below 2^direct are differences of `direct` bits, the
/// next one ends the stream, the others announce a difference of one bit more each.
struct Coding {
    unsigned direct = 0;
    unsigned most = 0;
    std::size_t symbols() const { return (std::size_t(1) << direct) + 1 + (most - direct); }
};

template <class T>
std::size_t unpackAs(BitReader bits, const CodeTable& codes, const Coding& coding,
                     std::span<std::byte> bytes)
{
    const std::size_t count = bytes.size() / sizeof(T);
    const std::uint32_t stop = std::uint32_t(1) << coding.direct;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t symbol = 0;
        if (!codes.take(bits, symbol) || symbol == stop)
            return i;
        std::int64_t difference = 0;
        if (symbol < stop) {
            const unsigned unused = 64 - coding.direct;
            difference = coding.direct == 0
                             ? 0
                             : static_cast<std::int64_t>(std::uint64_t(symbol) << unused) >> unused;
        } else if (!bits.takeSigned(coding.direct + symbol - stop, difference)) {
            return i;
        }
        value += static_cast<std::uint64_t>(difference);
        const T pixel = static_cast<T>(value);
        std::memcpy(bytes.data() + i * sizeof(T), &pixel, sizeof(T));
    }
    return count;
}

}  // namespace

std::uint64_t mostCanonicalPixels(std::span<const std::byte> packed)
{
    return packed.size() <= HeadBytes ? 0 : (packed.size() - HeadBytes) * std::uint64_t(8);
}

std::size_t unpackCanonical(std::span<const std::byte> packed, std::size_t pixelBytes, bool,
                            std::span<std::byte> pixels)
{
    if (packed.size() < HeadBytes + 2)
        return 0;
    Coding coding;
    coding.direct = std::to_integer<unsigned>(packed[HeadBytes]);
    coding.most = std::to_integer<unsigned>(packed[HeadBytes + 1]);
    if (coding.direct > 16 || coding.most < coding.direct || coding.most > 65)
        return 0;
    const auto rest = packed.subspan(HeadBytes + 2);
    if (rest.size() < coding.symbols())
        return 0;
    const CodeTable codes(rest.first(coding.symbols()));
    const BitReader bits(rest.subspan(coding.symbols()));
    switch (pixelBytes) {
    case 1:
        return unpackAs<std::uint8_t>(bits, codes, coding, pixels);
    case 2:
        return unpackAs<std::uint16_t>(bits, codes, coding, pixels);
    case 4:
        return unpackAs<std::uint32_t>(bits, codes, coding, pixels);
    default:
        assert(pixelBytes == 8);
        return unpackAs<std::uint64_t>(bits, codes, coding, pixels);
    }
}

}  // namespace morvend::imglib
