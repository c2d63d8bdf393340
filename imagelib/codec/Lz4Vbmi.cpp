// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// LZ4 sequences by copies of 64 bytes. Bit planes have some ten sequences in a KiB, most of them
// without literals and with matches longer than 18 bytes, for which other decoders branch most.
// Compiled with flags of its own: it must not include what other files share.
#include "imagelib/codec/Lz4Vbmi.h"

#include <cstdint>

#include <immintrin.h>

namespace morvend::codec {

namespace {

constexpr std::size_t Vector = 64;
constexpr std::size_t LeastMatch = 4;
constexpr std::size_t Extended = 15;  // a length in a token to which more bytes are added
constexpr std::size_t Full = 255;     // a byte of a length after which another one follows
/// Bytes from a token on that may be read at once: token, length, literals, offset, length.
constexpr std::size_t MostRead = 1 + 1 + Vector + 2 + 1;

/// A match nearer than a vector repeats its first bytes: the indices of those, and how many of the
/// 64 are whole repetitions.
struct Repetition {
    alignas(Vector) std::uint8_t places[Vector][Vector] = {};
    std::uint8_t whole[Vector] = {};
};
constexpr Repetition repetition()
{
    Repetition table;
    for (std::size_t offset = 1; offset < Vector; ++offset) {
        for (std::size_t i = 0; i < Vector; ++i)
            table.places[offset][i] = static_cast<std::uint8_t>(i % offset);
        table.whole[offset] = static_cast<std::uint8_t>(Vector / offset * offset);
    }
    return table;
}
constexpr Repetition Repeated = repetition();

template <class T>
T valueAt(const std::byte* bytes)
{
    T value;
    __builtin_memcpy(&value, bytes, sizeof value);
    return value;
}

inline std::size_t byteAt(const std::byte* at) { return valueAt<std::uint8_t>(at); }

inline std::size_t distance(const std::byte* from, const std::byte* to)
{
    return static_cast<std::size_t>(to - from);
}

/// Adds the bytes from `in` on to a length, up to one that is not 255; false when `end` comes
/// first.
inline bool addBytes(const std::byte*& in, const std::byte* end, std::size_t& length)
{
    std::size_t more = Full;
    while (more == Full) {
        if (in == end)
            return false;
        more = byteAt(in++);
        length += more;
    }
    return true;
}

/// Copies a match, and up to a vector beyond its end.
inline void copyMatch(std::byte* to, std::byte* end, std::size_t offset)
{
    const std::byte* from = to - offset;
    if (offset >= Vector) {
        for (; to < end; to += Vector, from += Vector)
            _mm512_storeu_si512(to, _mm512_loadu_si512(from));
        return;
    }
    const __m512i pattern = _mm512_permutexvar_epi8(_mm512_load_si512(Repeated.places[offset]),
                                                    _mm512_loadu_si512(from));
    for (; to < end; to += Repeated.whole[offset])
        _mm512_storeu_si512(to, pattern);
}

/// Unpacks sequences while they keep their distance from all ends and look sound, with at
/// most 64 literals each. Stops with `at` before the first other one.
void unpackMost(Lz4Place& at)
{
    const std::byte* in = at.in;
    std::byte* out = at.out;
    while (distance(in, at.inReadable) >= MostRead && in < at.inEnd &&
           distance(out, at.outWritable) >= Vector) {
        const std::size_t token = byteAt(in);
        std::size_t literals = token >> 4;
        const std::byte* next = in + 1;
        if (literals == Extended)
            literals += byteAt(next++);
        if (literals > Vector)
            break;
        if (literals != 0)
            _mm512_storeu_si512(out, _mm512_loadu_si512(next));
        next += literals;
        std::byte* const match = out + literals;
        // Most matches have one byte more of length: taken or not without a branch.
        const std::size_t offset = valueAt<std::uint16_t>(next);
        std::size_t length = token & Extended;
        const std::size_t isExtended = length == Extended;
        const std::size_t more = byteAt(next + 2) & (0 - isExtended);
        next += 2 + isExtended;
        length += more + LeastMatch;
        if (more == Full && (next >= at.inEnd || !addBytes(next, at.inEnd, length)))
            break;
        if (next >= at.inEnd || match > at.outEnd || offset - 1 >= distance(at.outBegin, match) ||
            length > distance(match, at.outEnd) ||
            length + Vector > distance(match, at.outWritable))
            break;
        out = match + length;
        copyMatch(match, out, offset);
        in = next;
    }
    at.in = in;
    at.out = out;
}

enum class Outcome { GoesOn, Ends, IsDamaged };

/// Unpacks one sequence, byte by byte where needed.
Outcome unpackOne(Lz4Place& at)
{
    if (at.in == at.inEnd)
        return Outcome::IsDamaged;  // a block ends with literals
    const std::size_t token = byteAt(at.in++);
    std::size_t literals = token >> 4;
    if (literals == Extended && !addBytes(at.in, at.inEnd, literals))
        return Outcome::IsDamaged;
    if (literals > distance(at.in, at.inEnd) || literals > distance(at.out, at.outEnd))
        return Outcome::IsDamaged;
    __builtin_memcpy(at.out, at.in, literals);
    at.in += literals;
    at.out += literals;
    if (at.in == at.inEnd)
        return at.out == at.outEnd ? Outcome::Ends : Outcome::IsDamaged;
    if (distance(at.in, at.inEnd) < 2)
        return Outcome::IsDamaged;
    const std::size_t offset = valueAt<std::uint16_t>(at.in);
    at.in += 2;
    std::size_t length = token & Extended;
    if (length == Extended && !addBytes(at.in, at.inEnd, length))
        return Outcome::IsDamaged;
    length += LeastMatch;
    if (offset - 1 >= distance(at.outBegin, at.out) || length > distance(at.out, at.outEnd))
        return Outcome::IsDamaged;
    for (std::byte* const end = at.out + length; at.out < end; ++at.out)
        *at.out = *(at.out - offset);
    return Outcome::GoesOn;
}

}  // namespace

bool lz4BlockVbmi(Lz4Place at)
{
    Outcome outcome = Outcome::GoesOn;
    while (outcome == Outcome::GoesOn) {
        unpackMost(at);
        outcome = unpackOne(at);
    }
    return outcome == Outcome::Ends;
}

}  // namespace morvend::codec
