// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// JSON texts from numbers, words and lists.
#pragma once

#include "bin/image/ImageNumber.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tarvik::tool {

/// Text in quotes; invalid UTF-8 becomes the replacement character.
inline std::string quoted(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// A computed number: whole numbers that a double holds exactly are written as integers.
inline ImageNumber numberOf(double value)
{
    constexpr double LargestExact = 9007199254740992;  // 2^53
    if (std::abs(value) <= LargestExact && value == std::floor(value))
        return ImageNumber(static_cast<long long>(value));
    return ImageNumber(value);
}

inline std::string jsonOf(const std::string& value) { return quoted(value); }
inline std::string jsonOf(float value) { return ImageNumber(value).json(); }
inline std::string jsonOf(double value) { return numberOf(value).json(); }
inline std::string jsonOf(int value) { return ImageNumber(value).json(); }
inline std::string jsonOf(unsigned int value) { return ImageNumber(value).json(); }
inline std::string jsonOf(bool value) { return value ? "true" : "false"; }

template <class T>
std::string jsonOf(const std::vector<T>& values)
{
    std::string text;
    for (const T& value : values)
        text += (text.empty() ? "" : ", ") + jsonOf(value);
    return '[' + text + ']';
}

/// A JSON object from ready texts: nlohmann::json holds no integers of more than 64 bits.
class JsonObject {
public:
    void add(const std::string& name, const std::string& json)
    {
        _text += (_text.empty() ? "" : ", ") + quoted(name) + ": " + json;
    }
    std::string text() const { return '{' + _text + '}'; }

private:
    std::string _text;
};

}  // namespace tarvik::tool
