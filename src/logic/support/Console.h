// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The printed lines of the program: timings and information, warnings and errors.
#pragma once

#include <string_view>

/// Everything that the program prints goes through here, exactly as given (no newline is added)
/// and flushed, one write for each call, so that lines of several threads don't mix.
/// Thread: any.
namespace console {

/// Timing and information lines, on standard output.
void print(std::string_view text);

/// Timing and information lines are dropped from now on; for programs whose standard output is
/// data.
void muteInformation();

/// A timing line on standard output: the label, the milliseconds and a newline.
void printTime(std::string_view label, long long milliseconds);

/// Warnings and errors, on standard error.
void warn(std::string_view text);

}  // namespace console
