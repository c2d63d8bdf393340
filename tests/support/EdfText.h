// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The smallest image files that a series can be made of.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace tarvik::tests {

/// One EDF frame of one row of 32-bit integers; frames may be put one behind the other.
inline std::string edfFrame(const std::vector<std::int32_t>& row)
{
    const std::string bytes = std::to_string(4 * row.size());
    std::string text = "{\nHeaderID = EH:000001:000000:000000 ;\nImage = 1 ;\n"
                       "ByteOrder = LowByteFirst ;\nDataType = SignedInteger ;\nDim_1 = " +
                       std::to_string(row.size()) + " ;\nDim_2 = 1 ;\nSize = " + bytes + " ;\n";
    text.append(1024 - 2 - text.size(), ' ');
    text += "}\n";
    const std::size_t header = text.size();
    text.resize(header + 4 * row.size());
    std::memcpy(text.data() + header, row.data(), 4 * row.size());
    return text;
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
