// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One batch at a time in a folder.
#pragma once

#include <map>
#include <string>
#include <utility>

/// The folders in which one batch rewrites headers. The system frees them when the process ends,
/// however it ends. On network file systems a lock may hold on this machine only. Thread: one at a
/// time.
class FolderLocks {
public:
    FolderLocks() = default;
    ~FolderLocks();
    FolderLocks(const FolderLocks&) = delete;
    FolderLocks& operator=(const FolderLocks&) = delete;

    /// Locks a folder unless it is locked here. One that can't be locked for another reason than
    /// another batch is left unlocked: its files will say what is wrong with it.
    /// @throws HeaderFileError while another batch, of any process, has it
    void lock(const std::string& folder);
    /// The same for the folder of a file, where a link leads to.
    void lockFolderOf(const std::string& path);

private:
    std::map<std::string, int> _known;  // folders and their descriptors
};
