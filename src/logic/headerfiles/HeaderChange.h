// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a write changes in a header, as a value.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// A piece of a file's header that is replaced by another one.
struct HeaderChange {
    std::size_t at;      // bytes from the start of the file as it was
    std::string before;  // empty where a line is added
    std::string after;   // empty where a line is taken out
    bool operator==(const HeaderChange&) const = default;
};

/// By rising places, none over another.
using HeaderChanges = std::vector<HeaderChange>;

/// A file's content after the changes.
std::string applied(std::string_view content, const HeaderChanges& changes);

/// The changes that lead back.
HeaderChanges reversed(const HeaderChanges& changes);

/// Do they fit into this content: is each text where it should be?
bool fits(std::string_view content, const HeaderChanges& changes);
