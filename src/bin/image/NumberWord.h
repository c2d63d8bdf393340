// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers on the command line.
#pragma once

#include "bin/image/UsageError.h"

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace tarvik::tool {

/// The number that a word consists of. `what` names it in the reason of a failure.
/// @throws UsageError
template <class T>
T toNumber(std::string_view text, const std::string& what)
{
    T value{};
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || stop != text.data() + text.size())
        throw UsageError(what + " is no number that fits: \"" + std::string(text) + '"');
    return value;
}

/// One that is not negative.
inline int toCount(std::string_view text, const std::string& what)
{
    const int value = toNumber<int>(text, what);
    if (value < 0)
        throw UsageError(what + " is negative: " + std::string(text));
    return value;
}

/// One that is neither NaN nor infinite.
inline double toLevel(std::string_view text, const std::string& what)
{
    const auto value = toNumber<double>(text, what);
    if (!std::isfinite(value))
        throw UsageError(what + " is not finite: " + std::string(text));
    return value;
}

}  // namespace tarvik::tool
