// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Small EDF files written by hand, for tests that need a series on disk.
#pragma once

#include "tests/support/TempFolder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvik::tests {

/// Writes an EDF file of one frame of 32-bit integers, rows of `width`, and returns its full path.
inline std::string writeEdf(const TempFolder& folder, const std::string& name, int width,
                            const std::vector<std::int32_t>& pixels)
{
    const std::string bytes(reinterpret_cast<const char*>(pixels.data()), pixels.size() * 4);
    std::string header = "{\nHeaderID = EH:000001:000000:000000 ;\nImage = 1 ;\n"
                         "ByteOrder = LowByteFirst ;\nDataType = SignedInteger ;\nDim_1 = " +
                         std::to_string(width) + " ;\nDim_2 = " +
                         std::to_string(pixels.size() / static_cast<std::size_t>(width)) +
                         " ;\nSize = " + std::to_string(bytes.size()) + " ;\n";
    header.resize(510, ' ');
    return folder.write(name, header + "}\n" + bytes);
}

}  // namespace tarvik::tests
