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
/// behind it. The number is the last run of digits before the extension; a compressed file has a
/// double extension such as ".cbf.gz", and an extension of digits only is the number itself.
class SeriesFinder {
public:
    /// A file of the set. Its name has the number in `digits` digits, with zeros in front.
    struct Member {
        int number = 0;
        int digits = 0;
        bool operator==(const Member&) const = default;
    };

    /// Null for a name without a number, or with one that an int can't hold.
    static std::optional<SeriesFinder> of(const std::string& path);

    int number() const { return _opened.number; }
    const Member& opened() const { return _opened; }

    /// Lists the folder once, without a look at any file.
    /// @returns the files of the set by rising number, each number once: of several names with the
    /// same number the one whose width is nearest to that of the opened name. Empty when the folder
    /// can't be listed.
    std::vector<Member> list() const;

    /// Full path of a member.
    std::string path(const Member& member) const;

private:
    bool parse(const char* name, Member& member) const;
    bool isNearer(int digits, int than) const;
    void order(std::vector<Member>& members) const;
    void sort(std::vector<Member>& members) const;

    std::string _directory;  // with the slash
    std::string _prefix;
    Member _opened;
    std::string _suffix;
};

}  // namespace morvend::imglib
