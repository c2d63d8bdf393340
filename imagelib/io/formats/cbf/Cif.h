// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The text of a Crystallographic Information File as a table of items.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morvend::imglib {

/// Items of a CIF text by name ("_category.item", compared without case), each with its values: one
/// for a single item, one for each row of a loop. Tolerant: what can't be understood is skipped.
/// The values are views into the text that was given, which must outlive the table.
class Cif {
public:
    explicit Cif(std::string_view text);

    /// All values of an item, empty if there is no such item.
    const std::vector<std::string_view>& values(std::string_view name) const;
    /// One value; empty if there is none, or if it is unknown ("?") or not applicable (".").
    std::string_view value(std::string_view name, std::size_t row = 0) const;

    /// Reads a value as a number; false if there isn't one.
    bool number(std::string_view name, double& value, std::size_t row = 0) const;

private:
    std::map<std::string, std::vector<std::string_view>, std::less<>> _items;
};

/// The header lines of a mini-CBF file, the value of "_array_data.header_contents" (or, misspelt,
/// "..._content"). Accepts also lines that follow the name without an opening ';', as one converter
/// writes them. Empty if there are none.
std::string_view headerContents(std::string_view cifText);

}  // namespace morvend::imglib
