// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A number as text that loses nothing.
#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <type_traits>

namespace tarvik::tool {

__extension__ typedef __int128 WideInteger;

/// Exact text of an integer, shortest text that reads back the same of a floating value, and "nan",
/// "inf", "-inf" for what is none.
class ImageNumber {
public:
    ImageNumber() = default;

    template <class T>
    explicit ImageNumber(T value)
    {
        char text[64];
        if constexpr (std::is_floating_point_v<T>) {
            _finite = std::isfinite(value);
            _text.assign(text, std::to_chars(text, text + sizeof text, value).ptr);
            if (std::isnan(value))
                _text = "nan";  // whatever its sign
        } else if constexpr (std::is_same_v<T, bool>) {
            _text = value ? "1" : "0";
        } else if constexpr (std::is_same_v<T, char>) {
            _text = std::to_string(int(value));
        } else {
            _text.assign(text, std::to_chars(text, text + sizeof text, value).ptr);
        }
    }

    /// For people.
    const std::string& text() const { return _text; }
    /// For JSON, which has no word for what is no number.
    std::string json() const { return _finite ? _text : '"' + _text + '"'; }

private:
    std::string _text = "0";
    bool _finite = true;
};

}  // namespace tarvik::tool
