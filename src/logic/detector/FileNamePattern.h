// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From what a user typed to the name of the next file.
#pragma once

#include <functional>
#include <optional>
#include <string>

/// A pattern taken apart: "x" gives "x_master.h5", or "x_001_master.h5", "x_002_master.h5" and so
/// on where that is taken; "x_07" counts on from 7 with two digits. "_master" and an extension may
/// be part of the pattern. Knows no files. A value.
class FileNamePattern {
public:
    /// @throws MNoFileAccessException for a path that leads above the root
    explicit FileNamePattern(std::string pattern);

    /// Absolute; empty for the root.
    const std::string& directory() const { return _directory; }
    /// The first full name that is not taken; none when the number would exceed 99999.
    std::optional<std::string>
    firstFree(const std::function<bool(const std::string&)>& taken) const;

private:
    void _takeNumber();
    std::string _name(int number) const;

    std::string _directory, _stem, _extension;
    int _number = 0;
    std::size_t _width = 3;  ///< least number of digits
    bool _hasNumber = false;
};
