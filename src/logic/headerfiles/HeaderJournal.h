// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The journal of a batch, which makes it undoable.
#pragma once

#include "logic/headerfiles/JournalEntry.h"

#include <cstddef>
#include <string>

/// Notes the old header lines of each file before it is replaced. An entry tells the truth whatever
/// happens next: by the digests in it one sees whether the file was replaced, was not, or has
/// changed since. The journal's file is made with the first entry; that of a batch that changed
/// nothing goes again. Those of the last batches are kept. Thread: one at a time.
class HeaderJournal {
public:
    /// A folder beside the user's settings.
    static std::string defaultFolder();

    explicit HeaderJournal(std::string folder);
    ~HeaderJournal();
    HeaderJournal(const HeaderJournal&) = delete;
    HeaderJournal& operator=(const HeaderJournal&) = delete;

    /// The entry is on the disk when it returns.
    /// @throws HeaderFileError, and then the file must not be replaced
    void add(const JournalEntry& entry);
    /// Drops the last entry, whose file was not replaced.
    void takeBack();

    /// First line of a journal, of a fixed size. @param process  that may have left temporary
    /// files, 0 for none
    static std::string head(long process);
    /// Sets the process in the head of a journal. @returns whether that succeeded
    static bool markProcess(int file, long process);

private:
    void _begin();
    void _write(const std::string& text) const;

    const std::string _folder;
    std::string _path;
    int _file = -1;
    std::size_t _size = 0;       // of what is valid
    std::size_t _lastEntry = 0;  // where the last entry begins
    std::size_t _entries = 0;
};
