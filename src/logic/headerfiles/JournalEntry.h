// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One rewritten file in a journal.
#pragma once

#include "logic/headerfiles/HeaderChange.h"

#include <optional>
#include <string>
#include <string_view>

/// What is needed to put a file's old header back, and to see whether that is still right.
struct JournalEntry {
    std::string path;    // absolute
    std::string before;  // digest of the file before the write
    std::string after;   // and of the file after it
    HeaderChanges changes;
    bool operator==(const JournalEntry&) const = default;

    /// Lines of printable ASCII; the last one tells whether the others are whole.
    std::string text() const;
    /// Takes an entry off the start of a journal's text.
    /// @returns nothing, and leaves the text, if none is whole there
    static std::optional<JournalEntry> take(std::string_view& journal);

    /// SHA-256 in hexadecimal digits.
    static std::string digestOf(std::string_view content);
};
