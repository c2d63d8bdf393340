// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header values written into many files.
#pragma once

#include "logic/headerfiles/CbfHeaderWriter.h"
#include "logic/headerfiles/FolderLocks.h"
#include "logic/headerfiles/HeaderJournal.h"
#include "logic/headerfiles/HeaderReport.h"

#include <string>

/// One batch, file by file: keeps other batches out of the folders, notes the old lines in a
/// journal, and sums up. A preview does none of that but sum up what a batch would do. Thread: one
/// at a time.
class HeaderBatch {
public:
    enum class Mode { Preview, Write };

    explicit HeaderBatch(Mode mode, std::string journalFolder = HeaderJournal::defaultFolder());

    /// Keeps other batches out of a folder from now on.
    /// @throws HeaderFileError while another one is there
    void lock(const std::string& folder);

    /// Writes the values into a file; one that already holds them is not touched.
    /// @returns what changes
    /// @throws HeaderFileError, when the file stays as it is
    HeaderChanges write(const std::string& path, const CbfHeaderWriter& writer,
                        CbfHeaderWriter::Additions additions = CbfHeaderWriter::Additions::First);

    const HeaderReport& report() const { return _report; }

private:
    HeaderChanges _preview(const std::string& path, const CbfHeaderWriter& writer,
                           CbfHeaderWriter::Additions additions) const;
    HeaderChanges _write(const std::string& path, const CbfHeaderWriter& writer,
                         CbfHeaderWriter::Additions additions);

    const Mode _mode;
    FolderLocks _locks;
    HeaderJournal _journal;
    HeaderReport _report;
};
