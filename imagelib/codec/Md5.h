// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The MD5 sum that CBF files carry for their binary data.
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace morvend::codec {

/// MD5 sum (RFC 1321) of bytes. A guard against transmission errors, not against an attacker.
/// @throws MNotImplementedException where the system's policy forbids MD5
std::array<std::byte, 16> md5(std::span<const std::byte> bytes);

}  // namespace morvend::codec
