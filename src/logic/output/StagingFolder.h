// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Output of several files that appear together or not at all.
#pragma once

#include <functional>
#include <string>

/// A hidden folder beside the output, in which the files are made under their final names. Removed
/// with all that is still in it.
class StagingFolder {
public:
    /// @param target  the main file of the output
    /// @throws MNoFileAccessException when the folder can't be made
    explicit StagingFolder(const std::string& target);
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;
    ~StagingFolder();

    /// The path of the main file while it is being written.
    std::string path() const { return _folder + "/" + _name; }

    /// Moves all files to their places, the main one last; before the first, calls check(path) for
    /// the place of each.
    /// @throws what check throws, MNoFileAccessException when a file can't be moved
    void publish(const std::function<void(const std::string& place)>& check) const;

private:
    std::string _directory;  // with the slash
    std::string _name;
    std::string _folder;
};
