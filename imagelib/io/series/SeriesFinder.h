// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From the name of one file to the numbered set that it belongs to.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace morvend::imglib {

/// The name of a numbered file, taken apart: folder, text before the number, the number, text
/// after it. The number is the last run of digits before the extension; a compressed file has a
/// double extension such as ".cbf.gz", and an extension of digits only is the number itself.
class SeriesFinder {
public:
    /// A file of the set. Its name has the number in `digits` digits, with leading zeros.
    struct Member {
        int number = 0;
        int digits = 0;
        bool operator==(const Member&) const = default;
    };

    /// Null for a name without a number, or with one that an int can't hold.
    static std::optional<SeriesFinder> of(const std::string& path);

    int number() const { return _opened.number; }
    const Member& opened() const { return _opened; }

    /// Lists the folder once, without opening any file.
    /// @returns the files of the set by rising number, each number once: of several names with the
    /// same number the one whose width is nearest to that of the opened name. Empty when the folder
    /// can't be listed.
    std::vector<Member> list() const;

    /// Full path of a member.
    std::string path(const Member& member) const;

private:
    /// Takes the name of a file apart; false if it doesn't belong to the set.
    bool parse(const char* name, Member& member) const;
    /// True if a width of `digits` digits is nearer to the opened name than `than` digits.
    bool isNearer(int digits, int than) const;
    /// Sorts by number and keeps one member a number: by a table, where there are few gaps ...
    void sortByNumber(std::vector<Member>& members) const;
    /// ... and by comparisons, where a table would be mostly empty.
    void sortSparse(std::vector<Member>& members) const;

    std::string _directory;  // with the slash
    std::string _prefix;
    Member _opened;
    std::string _suffix;
};

}  // namespace morvend::imglib
