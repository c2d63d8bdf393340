// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The name of the next file, as the folder stands now.
#pragma once

#include <chrono>
#include <string>

/// Either a name or, as a text for users, why there is none.
struct NextFileName {
    std::string name, error;
};

/// Looks for the first name of a pattern that no file has, in a folder where files can be written.
/// The files are looked at on a thread of their own. When their file system does not answer in time
/// that is the error and the thread is left behind; until it comes back, the same folder gets the
/// same answer at once.
/// Thread: GUI, which waits no longer than `patience`.
NextFileName nextFileName(const std::string& pattern,
                          std::chrono::milliseconds patience = std::chrono::seconds(2));
