// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Three bytes to four characters and back.
#include "imagelib/codec/Base64.h"

#include "imagelib/image/MException.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace morvend::codec {

namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t Blank = 64;
constexpr std::uint8_t Foreign = 65;

constexpr std::array<std::uint8_t, 256> Values = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(Foreign);
    for (std::size_t i = 0; i < Alphabet.size(); ++i)
        values[static_cast<unsigned char>(Alphabet[i])] = static_cast<std::uint8_t>(i);
    for (const char blank : {' ', '\t', '\r', '\n'})
        values[static_cast<unsigned char>(blank)] = Blank;
    return values;
}();

}  // namespace

std::string base64Encode(std::span<const std::byte> bytes, std::size_t lineLength)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t inLine = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < count; ++k)
            bits |= std::to_integer<std::uint32_t>(bytes[i + k]) << (16 - 8 * k);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? Alphabet[bits >> (18 - 6 * k) & 63] : '=';
        inLine += 4;
        if (inLine == lineLength) {
            text += "\r\n";
            inLine = 0;
        }
    }
    if (lineLength && inLine)
        text += "\r\n";
    return text;
}

std::vector<std::byte> base64Decode(std::string_view text)
{
    std::vector<std::byte> bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    unsigned count = 0;  // bits not yet written
    for (std::size_t i = 0; i < text.size() && text[i] != '='; ++i) {
        const std::uint8_t value = Values[static_cast<unsigned char>(text[i])];
        if (value == Blank)
            continue;
        if (value == Foreign)
            throw MRuntimeException("character " + std::to_string(i + 1) +
                                    " does not belong to BASE64 text");
        bits = bits << 6 | value;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::byte>(bits >> count));
        }
    }
    return bytes;
}

}  // namespace morvend::codec
