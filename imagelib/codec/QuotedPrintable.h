// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bytes as mostly readable text (RFC 2045).
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace morvend::codec {

/// Decodes "=XX" to one byte and drops "=" at the end of a line together with that end; all other
/// characters stay. Blanks before the end of a line are padding of the transport and dropped.
/// @throws MRuntimeException naming the position of a '=' followed by anything else
std::vector<std::byte> quotedPrintableDecode(std::string_view text);

}  // namespace morvend::codec
