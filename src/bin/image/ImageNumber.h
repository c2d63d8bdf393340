// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Numbers as text without loss.
#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <type_traits>

namespace tarvik::tool {

__extension__ typedef __int128 WideInteger;

/// Exact text of an integer, shortest text that reads back as the same floating value of its width,
/// and "nan", "inf", "-inf" for values that aren't numbers.
class ImageNumber {
public:
    ImageNumber() = default;

    template <class T>
    explicit ImageNumber(T value)
    {
        char text[64];
        if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, char>)
            _text = std::to_string(int(value));
        else
            _text.assign(text, std::to_chars(text, text + sizeof text, value).ptr);
        _json = _text;
        if constexpr (std::is_floating_point_v<T>) {
            if (std::isnan(value))
                _text = "nan";  // whatever its sign
            if (!std::isfinite(value))
                _json = '"' + _text + '"';
        }
    }

    /// The value of a pixel. JSON readers know doubles only: a float becomes the double that it is.
    template <class T>
    static ImageNumber ofPixel(T value)
    {
        ImageNumber number(value);
        if constexpr (std::is_same_v<T, float>)
            number._json = ImageNumber(double(value))._json;
        return number;
    }

    /// For people.
    const std::string& text() const { return _text; }
    /// For JSON, which can't express NaN and infinity: these become texts.
    const std::string& json() const { return _json; }

private:
    std::string _text = "0";
    std::string _json = "0";
};

}  // namespace tarvik::tool
