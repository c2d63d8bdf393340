// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes as octal, decimal or hexadecimal numbers, the encodings X-BASE8, X-BASE10 and X-BASE16 of
// the imgCIF dictionary.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace morvend::codec {

/// Decodes lines such as "H4< FF0700 ====00": H, O or D for the base, the bytes of a word (1 to 8),
/// '<' where the first byte of a word is its highest and '>' where it is its lowest, then words.
/// Leading zeros of a word may be missing; each byte missing from the last word is "==". '#' begins
/// a comment.
/// @throws MRuntimeException that quotes a line or word of another form
std::vector<std::byte> numberWordsDecode(std::string_view text);

}  // namespace morvend::codec
