// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Decoding of numbers, line by line.
#include "imagelib/codec/NumberWords.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/QuotedText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

namespace morvend::codec {

namespace {

constexpr std::string_view Blanks = " \t\v\f";

/// Takes the next word off a line; empty at its end.
std::string_view takeWord(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(Blanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(Blanks));
    line.remove_prefix(word.size());
    return word;
}

/// What the first word of a line states about the others.
struct LineForm {
    int base = 0;
    std::size_t bytes = 0;
    bool highestFirst = false;

    explicit LineForm(std::string_view word)
    {
        if (word.size() == 3 && word[1] >= '1' && word[1] <= '8') {
            const char letter = static_cast<char>(word[0] & ~0x20);
            base = letter == 'H' ? 16 : letter == 'D' ? 10 : letter == 'O' ? 8 : 0;
            bytes = static_cast<std::size_t>(word[1] - '0');
            highestFirst = word[2] == '<';
        }
        if (base == 0 || (word[2] != '>' && !highestFirst))
            throw MRuntimeException("a line of numbers begins with " + quoted(word) +
                                    " instead of, for example, H4<");
    }

    /// Appends the bytes of one word.
    void append(std::string_view word, std::vector<std::byte>& decoded) const
    {
        const auto marks = static_cast<std::size_t>(std::count(word.begin(), word.end(), '='));
        const std::size_t first = std::min(word.find_first_not_of('='), word.size());
        const char* const digits = word.data() + first;
        const char* const end = digits + (word.size() - marks);
        const std::size_t present = bytes - std::min(bytes, marks / 2);
        std::uint64_t value = 0;
        // Marks within the digits leave characters that are no digits.
        const auto [stop, error] = std::from_chars(digits, end, value, base);
        if (error != std::errc() || stop != end || marks % 2 != 0 || marks > 2 * bytes ||
            (present < 8 && value >> 8 * present != 0))
            throw MRuntimeException(quoted(word) + " is no number of " + std::to_string(bytes) +
                                    " bytes to the base of " + std::to_string(base));
        for (std::size_t i = 0; i < present; ++i)
            decoded.push_back(
                static_cast<std::byte>(value >> 8 * (highestFirst ? present - 1 - i : i)));
    }
};

}  // namespace

std::vector<std::byte> numberWordsDecode(std::string_view text)
{
    std::vector<std::byte> decoded;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find_first_of("\r\n"));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        line = line.substr(0, line.find('#'));
        std::string_view word = takeWord(line);
        if (word.empty())
            continue;
        const LineForm form(word);
        while (!(word = takeWord(line)).empty())
            form.append(word, decoded);
    }
    return decoded;
}

}  // namespace morvend::codec
