// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The smallest image files that a series can be made of.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

namespace tarvik::tests {

/// An EDF header of statements, padded with blanks to a multiple of `unit` bytes.
inline std::string edfHeader(const std::string& statements, std::size_t unit = 512)
{
    std::string text = "{\n" + statements;
    const std::size_t bytes = text.size() + 2;
    text.append((bytes + unit - 1) / unit * unit - bytes, ' ');
    return text + "}\n";
}

/// One EDF frame of 32-bit integers or, with a header of 512 bytes, of unsigned ones of 16 bits;
/// one row when no width is given. `more` statements replace earlier ones. Frames may be put one
/// after the other.
template <class T = std::int32_t>
std::string edfFrame(const std::vector<T>& pixels, std::size_t width = 0,
                     const std::string& more = {})
{
    constexpr bool Integers = std::is_same_v<T, std::int32_t>;
    static_assert(Integers || std::is_same_v<T, std::uint16_t>);
    width = width ? width : pixels.size();
    const std::size_t bytes = sizeof(T) * pixels.size();
    std::string text = "HeaderID = EH:000001:000000:000000 ;\nImage = 1 ;\n"
                       "ByteOrder = LowByteFirst ;\nDataType = ";
    text += Integers ? "SignedInteger" : "UnsignedShort";
    text += " ;\nDim_1 = " + std::to_string(width) +
            " ;\nDim_2 = " + std::to_string(pixels.size() / width) +
            " ;\nSize = " + std::to_string(bytes) + " ;\n" + more;
    return edfHeader(text, Integers ? 1024 : 512)
        .append(reinterpret_cast<const char*>(pixels.data()), bytes);
}

/// A file of several frames, each of one pixel.
inline std::string edfFrames(std::initializer_list<std::int32_t> values)
{
    std::string text;
    for (const std::int32_t value : values)
        text += edfFrame({value});
    return text;
}

}  // namespace tarvik::tests
