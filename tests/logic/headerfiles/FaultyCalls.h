// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Calls to the system that fail, or are the last ones of a process.
#pragma once

#include <string>
#include <vector>

/// Takes the place of the system's calls that write files. Only what runs after begin() counts.
/// Those that wait for the disk return at once.
namespace tarvik::tests::faulty {

enum class Fault {
    Refused,     // the call does nothing and reports that there is no space left
    KillBefore,  // the process is killed instead of the call
    KillMidway   // the same, but half of what was to be written is
};

/// From now on the call of this number, counted from 0, goes wrong.
void begin(int number, Fault fault);
/// All calls work again. @returns whether there was a call of that number
bool end();
/// Names of the calls since begin(), in their order.
const std::vector<std::string>& seen();

}  // namespace tarvik::tests::faulty
