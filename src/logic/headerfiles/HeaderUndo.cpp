// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderUndo.h"

#include "logic/headerfiles/HeaderFileError.h"
#include "logic/headerfiles/ReplacedFile.h"

HeaderUndo::HeaderUndo(HeaderBatch::Mode mode, const std::string& journalFolder)
    : _mode(mode)
    , _last(LastWrite::find(journalFolder))
{
    if (!_last)
        throw HeaderFileError("There is no write to undo");
    if (mode == HeaderBatch::Mode::Write)
        _last->begin();
}

HeaderUndo::~HeaderUndo()
{
    if (_mode == HeaderBatch::Mode::Write)
        _last->end(_settled == count());
}

HeaderChanges HeaderUndo::putBack(std::size_t i)
{
    // A file that was written twice must first get back what the second write replaced.
    const JournalEntry& entry = _entry(i);
    try {
        HeaderChanges changes = _putBack(entry);
        if (changes.empty())
            _report.unchanged();
        else
            _report.changed(entry.path, changes);
        return changes;
    } catch (const std::exception& error) {
        _report.failed(error.what());
        throw;
    }
}

HeaderChanges HeaderUndo::_putBack(const JournalEntry& entry)
{
    if (_mode == HeaderBatch::Mode::Write)
        _locks.lockFolderOf(entry.path);
    ReplacedFile file(entry.path);
    const std::string now = JournalEntry::digestOf(file.content());
    if (now == entry.before) {
        ++_settled;
        return {};
    }
    HeaderChanges back = reversed(entry.changes);
    if (now != entry.after || !fits(file.content(), back)) {
        ++_settled;
        throw HeaderFileError("The file has changed since the write: " + entry.path);
    }
    const std::string content = applied(file.content(), back);
    if (JournalEntry::digestOf(content) != entry.before) {
        ++_settled;
        throw HeaderFileError("The journal does not fit the file: " + entry.path);
    }
    if (_mode == HeaderBatch::Mode::Write)
        file.replace(content);
    ++_settled;
    return back;
}
