// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "header": prints headers, and changes them in CBF files.
#pragma once

#include "bin/image/Arguments.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tarvik::tool {

/// Goes through the files; one that fails does not stop the others. What is changed can be undone.
/// Shows progress on standard error if that is a terminal.
class Header {
public:
    explicit Header(Arguments arguments);

    /// Prints the headers, or what changed or would change.
    /// @returns a sentence for each kind of failure
    /// @throws MException when nothing could be done at all
    std::vector<std::string> run(std::ostream& out) const;

private:
    std::vector<std::string> _print(std::ostream& out) const;
    std::vector<std::string> _write(std::ostream& out) const;
    std::vector<std::string> _undo(std::ostream& out) const;

    Arguments _arguments;
};

}  // namespace tarvik::tool
