// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes as text of 64 characters (RFC 4648).
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvend::codec {

/// Encodes bytes, padded by '='. With `lineLength` (a multiple of 4) each line ends with CR LF.
std::string base64Encode(std::span<const std::byte> bytes, std::size_t lineLength = 0);

/// Decodes until the first '=' or the end; blanks and line ends are skipped.
/// @throws MRuntimeException naming the position of a character outside the 64
std::vector<std::byte> base64Decode(std::string_view text);

}  // namespace morvend::codec
