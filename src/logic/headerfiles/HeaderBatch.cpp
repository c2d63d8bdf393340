// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderBatch.h"

#include "logic/headerfiles/HeaderFileError.h"
#include "logic/headerfiles/HeaderText.h"
#include "logic/headerfiles/ReplacedFile.h"

#include <filesystem>

namespace {

/// Headers are a few kilobytes.
constexpr std::size_t Start = std::size_t(64) << 10;

HeaderChanges changesIn(const ReplacedFile& file, const std::string& path,
                        const CbfHeaderWriter& writer, CbfHeaderWriter::Additions additions)
{
    const HeaderText text(file.content(), path);
    text.checkComplete(file.size());
    return writer.changes(text, path, additions);
}

}  // namespace

HeaderBatch::HeaderBatch(Mode mode, std::string journalFolder)
    : _mode(mode)
    , _journal(std::move(journalFolder))
{}

void HeaderBatch::lock(const std::string& folder)
{
    if (_mode == Mode::Write)
        _locks.lock(folder);
}

HeaderChanges HeaderBatch::write(const std::string& path, const CbfHeaderWriter& writer,
                                 CbfHeaderWriter::Additions additions)
{
    try {
        HeaderChanges changes = _mode == Mode::Preview ? _preview(path, writer, additions)
                                                       : _write(path, writer, additions);
        if (changes.empty())
            _report.unchanged();
        else
            _report.changed(path, changes);
        return changes;
    } catch (const std::exception& error) {
        _report.failed(error.what());
        throw;
    }
}

HeaderChanges HeaderBatch::_preview(const std::string& path, const CbfHeaderWriter& writer,
                                    CbfHeaderWriter::Additions additions) const
{
    try {
        return changesIn(ReplacedFile(path, Start), path, writer, additions);
    } catch (const HeaderFileError&) {
        // Perhaps its header goes on.
        return changesIn(ReplacedFile(path), path, writer, additions);
    }
}

HeaderChanges HeaderBatch::_write(const std::string& path, const CbfHeaderWriter& writer,
                                  CbfHeaderWriter::Additions additions)
{
    _locks.lockFolderOf(path);
    ReplacedFile file(path);
    HeaderChanges changes = changesIn(file, path, writer, additions);
    if (changes.empty())
        return changes;
    const std::string content = applied(file.content(), changes);
    _journal.add({std::filesystem::absolute(file.path()).string(),
                  JournalEntry::digestOf(file.content()), JournalEntry::digestOf(content),
                  changes});
    try {
        file.replace(content);
    } catch (...) {
        _journal.takeBack();
        throw;
    }
    return changes;
}
