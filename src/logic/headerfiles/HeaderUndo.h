// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The last batch undone.
#pragma once

#include "logic/headerfiles/FolderLocks.h"
#include "logic/headerfiles/HeaderBatch.h"
#include "logic/headerfiles/HeaderReport.h"
#include "logic/headerfiles/LastWrite.h"

#include <cstddef>
#include <memory>
#include <string>

/// Puts the header lines back that the last batch replaced, file by file, from the last one to the
/// first. A file that is not what the batch left, byte for byte, stays as it is. Thread: one at a
/// time.
class HeaderUndo {
public:
    /// @throws HeaderFileError if there is nothing to undo, or a batch is still at it
    explicit HeaderUndo(HeaderBatch::Mode mode,
                        const std::string& journalFolder = HeaderJournal::defaultFolder());
    ~HeaderUndo();
    HeaderUndo(const HeaderUndo&) = delete;
    HeaderUndo& operator=(const HeaderUndo&) = delete;

    std::size_t count() const { return _last->entries().size(); }
    const LastWrite& last() const { return *_last; }
    /// Of the file that putBack(i) is about.
    const std::string& path(std::size_t i) const { return _entry(i).path; }

    /// Puts a file back. @param i  counts from 0 to count() - 1, from the last file to the first
    /// @throws HeaderFileError, when the file stays as it is
    HeaderChanges putBack(std::size_t i);

    const HeaderReport& report() const { return _report; }

private:
    const JournalEntry& _entry(std::size_t i) const { return _last->entries().at(count() - 1 - i); }
    HeaderChanges _putBack(const JournalEntry& entry);

    const HeaderBatch::Mode _mode;
    std::unique_ptr<LastWrite> _last;
    FolderLocks _locks;
    HeaderReport _report;
    std::size_t _settled = 0;  // files that are back or never will be
};
