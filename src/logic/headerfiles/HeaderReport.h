// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a batch did, or would do, in few lines.
#pragma once

#include "logic/headerfiles/HeaderChange.h"

#include <string>
#include <vector>

/// Gathers what happened to the files of a batch. Thread: one at a time.
class HeaderReport {
public:
    void changed(const std::string& path, const HeaderChanges& changes);
    /// A file that already holds the values.
    void unchanged() { ++_unchanged; }
    void failed(const std::string& reason);

    int changedFiles() const { return _changed; }
    int unchangedFiles() const { return _unchanged; }
    int failedFiles() const { return _failed; }
    /// Lines for users: how many files and where, then each kind of line with its first change,
    /// then what stays as it is, and why.
    /// @param did  what happens to the files, as in "changed" or "would change"
    std::string text(const std::string& did) const;
    /// Sentences about what stays as it is, and why; one for all files of the same reason.
    std::vector<std::string> failures() const;

private:
    /// Changes of one kind of line.
    struct Kind {
        std::string name;
        int files;
        bool differ;  // from file to file
        HeaderChange first;
        HeaderChange last;
    };
    /// Failures whose reasons differ in numbers only.
    struct Failure {
        std::string kind;
        std::string first;
        int files;
    };

    std::string _place() const;

    int _changed = 0;
    int _unchanged = 0;
    int _failed = 0;
    std::string _firstPath;
    std::string _lastPath;
    std::vector<Kind> _kinds;
    std::vector<Failure> _failures;
};

/// A change as lines of a diff, which begin with "-" and "+", with this indent.
std::string differenceText(const HeaderChange& change, const std::string& indent);
