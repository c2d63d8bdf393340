// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// JSON of foreign origin: parsed within bounds, and read member by member with a check of the type.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace morvend::imglib {

inline constexpr std::size_t MostJsonBytes = std::size_t(1) << 20;
inline constexpr int MostJsonDepth = 16;
inline constexpr std::size_t MostJsonValues = 20'000;

// All functions throw MRuntimeException with the reason alone; the caller adds where it came from.

/// Parses a text that must hold one object, within the bounds above. Takes at most some 100 bytes
/// of memory for each byte of the text.
nlohmann::json parseObject(std::string_view text);

/// A member that must be there; a null counts as missing.
const nlohmann::json& member(const nlohmann::json& object, const char* name);
/// A member that may be missing; null then.
const nlohmann::json* memberIfAny(const nlohmann::json& object, const char* name);

bool toBool(const nlohmann::json& value, const char* name);
/// An integer from `least` to `most`.
std::int64_t toInteger(const nlohmann::json& value, const char* name, std::int64_t least,
                       std::int64_t most);
/// A finite number.
double toDouble(const nlohmann::json& value, const char* name);
/// A text of up to 4 KiB; control characters become "?".
std::string toText(const nlohmann::json& value, const char* name);

}  // namespace morvend::imglib
