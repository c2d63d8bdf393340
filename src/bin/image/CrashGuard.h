// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Turns a crash in a library into a message and an exit code.
#pragma once

#include <functional>
#include <string>

namespace tarvik::tool {

/// Runs the whole work in a child process, which has the files, the terminal and the signals of
/// this one. The work needs no change for it; the cost is a fork.
class CrashGuard {
public:
    /// Notes the current step, as in "reading image 12: /data/x_master.h5".
    static void note(const std::string& doing);

    /// Runs the work. Call it before the first thread begins.
    /// @param failed  turns the reason of a crash, as in "the program ended with signal 11
    /// (Segmentation fault) while reading image 12: /data/x_master.h5", into an exit code
    /// @returns the exit code of the work, or of `failed`
    static int run(const std::function<int()>& work,
                   const std::function<int(const std::string&)>& failed);
};

}  // namespace tarvik::tool
