// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work over the headers of many files, in the background.
#pragma once

#include "logic/headerfiles/HeaderBatch.h"

#include <QThread>

#include <atomic>
#include <exception>
#include <string>

/// One walk over files: first, if wanted, as a preview that changes nothing, then for good. A file
/// that fails is printed on standard error, and the walk goes on with the next one. Files that were
/// done before an abort stay so. Thread: setters before start() only, unless they say otherwise.
class HeaderFilesThread : public QThread {
    Q_OBJECT
public:
    ~HeaderFilesThread() override;

    void setMode(HeaderBatch::Mode mode) { _mode = mode; }
    void setJournalFolder(const std::string& folder) { _journalFolder = folder; }
    /// Ends the walk after the file that it is at. Thread: any.
    void abort() { _abort = true; }
    /// What the last walk did or would do; once it has finished.
    const HeaderReport& report() const { return _report; }

signals:
    /// Number of finished files and of all files; at first 0.
    void progress(int done, int total);

protected:
    bool aborted() const { return _abort; }
    HeaderBatch::Mode mode() const { return _mode; }
    const std::string& journalFolder() const { return _journalFolder; }
    /// Prints why a file stays as it is; a preview prints nothing.
    void print(const std::exception& error) const;
    void setReport(const HeaderReport& report) { _report = report; }

private:
    HeaderBatch::Mode _mode = HeaderBatch::Mode::Write;
    std::string _journalFolder = HeaderJournal::defaultFolder();
    HeaderReport _report;
    std::atomic<bool> _abort = false;
};
