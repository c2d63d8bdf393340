// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where the text header of a CBF file is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The text between the two semicolons after "_array_data.header_contents". A view of the file's
/// first bytes, which outlive it.
class HeaderText {
public:
    /// A line that begins with '#' in the first column, without its end.
    struct Line {
        std::size_t at;  // bytes from the start of the file
        std::string_view text;
    };

    /// @param start  the file's first bytes, or all of them
    /// @param path  of the file, for the reasons
    /// @throws HeaderFileError for a file that is no CBF or has no header text, and for one whose
    /// header text isn't marked clearly enough to change it
    HeaderText(std::string_view start, const std::string& path);

    /// Where the closing semicolon is, before which a line can be added.
    std::size_t end() const { return _end; }
    /// Is that semicolon in the first column? Otherwise a line before it would break the file.
    bool takesLines() const;
    std::vector<Line> lines() const;
    /// With both semicolons.
    std::string_view text() const { return _file.substr(_begin, _end + 1 - _begin); }

    /// @throws HeaderFileError if the file ends before the pixel data that its header announces do
    /// @param size  of the whole file in bytes
    void checkComplete(std::size_t size) const;

private:
    std::string_view _file;
    const std::string& _path;
    std::size_t _begin = 0;
    std::size_t _end = 0;
};
