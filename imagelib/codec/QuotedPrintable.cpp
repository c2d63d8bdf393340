// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Decoding of quoted-printable text.
#include "imagelib/codec/QuotedPrintable.h"

#include "imagelib/image/MException.h"

#include <string>

namespace morvend::codec {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

/// Where the blanks at `at` end.
std::size_t endOfBlanks(std::string_view text, std::size_t at)
{
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
        ++at;
    return at;
}

bool isLineEnd(std::string_view text, std::size_t at)
{
    return at >= text.size() || text[at] == '\r' || text[at] == '\n';
}

std::size_t behindLineEnd(std::string_view text, std::size_t at)
{
    if (at < text.size() && text[at] == '\r')
        ++at;
    if (at < text.size() && text[at] == '\n')
        ++at;
    return at;
}

}  // namespace

std::vector<std::byte> quotedPrintableDecode(std::string_view text)
{
    std::vector<std::byte> bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ' || text[i] == '\t') {
            const std::size_t end = endOfBlanks(text, i);
            if (!isLineEnd(text, end)) {
                for (; i < end; ++i)
                    bytes.push_back(static_cast<std::byte>(text[i]));
            }
            i = end;
        } else if (text[i] != '=') {
            bytes.push_back(static_cast<std::byte>(text[i++]));
        } else if (const std::size_t end = endOfBlanks(text, i + 1); isLineEnd(text, end)) {
            i = behindLineEnd(text, end);
        } else {
            const int high = hexDigit(text[i + 1]);
            const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
            if (high < 0 || low < 0)
                throw MRuntimeException("character " + std::to_string(i + 1) +
                                        " is an escape without two hexadecimal digits");
            bytes.push_back(static_cast<std::byte>(16 * high + low));
            i += 3;
        }
    }
    return bytes;
}

}  // namespace morvend::codec
