// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Is a value one of those that a detector accepts now?
#pragma once

#include "imagelib/image/MException.h"

#include <set>
#include <sstream>
#include <string>
#include <tuple>

/// @param range  value, least and largest one, as the detector answered
/// @throws MRuntimeException with the range in its text and a line feed at its end
template <class T>
void checkWithin(T value, const std::tuple<T, T, T>& range)
{
    const auto& [now, min, max] = range;
    if (min <= value && value <= max)
        return;
    std::ostringstream text;
    text << "Not within range [" << min << ',' << max << "]\n";
    throw morvend::MRuntimeException(text.str());
}

/// @param choice  value, and the allowed ones, as the detector answered
/// @throws MRuntimeException that lists the allowed texts
inline void checkWithin(const std::string& value,
                        const std::tuple<std::string, std::set<std::string>>& choice)
{
    const std::set<std::string>& allowed = std::get<1>(choice);
    if (allowed.contains(value))
        return;
    std::string text;
    for (const std::string& each : allowed)
        text += ", " + each;
    throw morvend::MRuntimeException("Not within [" + (allowed.empty() ? text : text.substr(2)) +
                                     "]");
}
