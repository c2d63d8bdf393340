// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Files whose reads do not come back, like those of a mount that does not answer.
#pragma once

#include <string>

namespace tarvik::tests {

/// While it lives, each pread() of this process from a file whose path begins so waits. A program
/// that uses it links HangingReads.cpp, which takes the place of the system's pread(). One at a
/// time.
class HangingReads {
public:
    explicit HangingReads(std::string path);
    ~HangingReads();
    HangingReads(const HangingReads&) = delete;
    HangingReads& operator=(const HangingReads&) = delete;

    /// Reads that wait now.
    static int count();
    /// Waits until there are so many. @returns whether they came within a minute
    static bool waitFor(int count);
};

}  // namespace tarvik::tests
