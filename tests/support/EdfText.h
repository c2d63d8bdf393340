// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The smallest image files that a series can be made of.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace tarvik::tests {

/// One EDF frame of 32-bit integers, one row when no width is told; frames may be put one behind
/// the other.
inline std::string edfFrame(const std::vector<std::int32_t>& pixels, std::size_t width = 0)
{
    width = width ? width : pixels.size();
    std::string text = "{\nHeaderID = EH:000001:000000:000000 ;\nImage = 1 ;\n"
                       "ByteOrder = LowByteFirst ;\nDataType = SignedInteger ;\nDim_1 = " +
                       std::to_string(width) +
                       " ;\nDim_2 = " + std::to_string(pixels.size() / width) +
                       " ;\nSize = " + std::to_string(4 * pixels.size()) + " ;\n";
    text.append(1024 - 2 - text.size(), ' ');
    text += "}\n";
    return text.append(reinterpret_cast<const char*>(pixels.data()), 4 * pixels.size());
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
