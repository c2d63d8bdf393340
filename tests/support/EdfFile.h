// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Small EDF files written by hand, for tests that need a series on disk.
#pragma once

#include "tests/support/EdfText.h"
#include "tests/support/TempFolder.h"

#include <string>
#include <vector>

namespace tarvik::tests {

/// Writes an EDF file of one frame of 32-bit integers, rows of `width`, and returns its full path.
inline std::string writeEdf(const TempFolder& folder, const std::string& name, int width,
                            const std::vector<std::int32_t>& pixels)
{
    return folder.write(name, edfFrame(pixels, static_cast<std::size_t>(width)));
}

}  // namespace tarvik::tests
