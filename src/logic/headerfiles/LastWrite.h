// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The journal of the last batch, read again.
#pragma once

#include "logic/headerfiles/JournalEntry.h"

#include <ctime>
#include <memory>
#include <string>
#include <vector>

/// The last batch that can be undone. While it lives, nobody else undoes it. Thread: one at a time.
class LastWrite {
public:
    /// @returns null when there is none
    /// @throws HeaderFileError while that batch is still writing, or if its journal can't be read
    static std::unique_ptr<LastWrite> find(const std::string& folder);
    /// Removes the temporary files that a batch or an undoing left when it was killed.
    static void removeLeftovers(const std::string& folder);
    ~LastWrite();
    LastWrite(const LastWrite&) = delete;
    LastWrite& operator=(const LastWrite&) = delete;

    /// In the order of the batch.
    const std::vector<JournalEntry>& entries() const { return _entries; }
    /// When the batch ended.
    std::time_t time() const { return _time; }
    /// Files are being put back from now on.
    void begin();
    /// Files are no longer put back. @param done  there is nothing left to try: the journal goes,
    /// and the batch before becomes the last one
    void end(bool done);

private:
    LastWrite(std::string path, int file);
    void _read();
    void _removeLeftovers();

    const std::string _path;
    const int _file;
    long _process = 0;  // that may have left temporary files
    std::time_t _time = 0;
    std::vector<JournalEntry> _entries;
};
