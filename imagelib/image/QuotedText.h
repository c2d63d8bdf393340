// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Texts from outside, made fit for messages.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace morvend {

/// A text from a file or another process for a message to the user: in quotes, cut when it is long,
/// without the control characters that would cut or garble the message.
inline std::string quoted(std::string_view text)
{
    constexpr std::size_t Most = 80;
    std::string result = "\"";
    for (const char c : text.substr(0, Most))
        result += static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? '?' : c;
    return result + (text.size() > Most ? "...\"" : "\"");
}

}  // namespace morvend
