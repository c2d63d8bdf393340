// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writing whole lines to standard output and standard error.
#include "logic/support/Console.h"

#include <atomic>
#include <cstdio>
#include <string>

namespace console {

namespace {

std::atomic<bool> muted = false;

void write(std::FILE* stream, std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

}  // namespace

void print(std::string_view text)
{
    if (!muted)
        write(stdout, text);
}

void muteInformation() { muted = true; }

void printTime(std::string_view label, long long milliseconds)
{
    std::string line(label);
    line += std::to_string(milliseconds);
    line += '\n';
    print(line);
}

void warn(std::string_view text) { write(stderr, text); }

}  // namespace console
