// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/HeaderJournal.h"

#include "logic/headerfiles/HeaderFileError.h"
#include "logic/headerfiles/JournalFolder.h"
#include "logic/headerfiles/LastWrite.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Batches that can be undone.
constexpr std::size_t MostJournals = 20;

HeaderFileError failure(int error)
{
    return HeaderFileError("The old header lines can't be kept for undoing: " +
                           std::generic_category().message(error));
}

}  // namespace

std::string HeaderJournal::defaultFolder()
{
    const QSettings settings(QSettings::NativeFormat, QSettings::UserScope,
                             QStringLiteral("MORVEND"), QStringLiteral("TARVIK"));
    return QFileInfo(settings.fileName()).dir().filePath("TARVIK-headers").toStdString();
}

HeaderJournal::HeaderJournal(std::string folder)
    : _folder(std::move(folder))
{}

HeaderJournal::~HeaderJournal()
{
    if (_file < 0)
        return;
    if (_entries == 0)
        ::unlink(_path.c_str());
    else
        markProcess(_file, 0);
    ::close(_file);
}

std::string HeaderJournal::head(long process)
{
    std::string number = std::to_string(process);
    number.insert(0, 10 - std::min<std::size_t>(number.size(), 10), '0');
    return "TARVIK headers 1 " + number + '\n';
}

bool HeaderJournal::markProcess(int file, long process)
{
    const std::string text = head(process);
    return ::pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

void HeaderJournal::_begin()
{
    LastWrite::removeLeftovers(_folder);
    std::vector<long> numbers = journal_folder::numbers(_folder);
    journal_folder::make(_folder);
    long number = numbers.empty() ? 0 : numbers.back();
    struct stat status = {};
    do {
        if (_file >= 0)
            ::close(_file);
        _path = journal_folder::name(_folder, ++number);
        _file = ::open(_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (_file < 0 && errno != EEXIST)
            throw failure(errno);
        // Someone who undoes may have found it empty and removed it meanwhile.
    } while (_file < 0 || ::flock(_file, LOCK_EX) != 0 || ::fstat(_file, &status) != 0 ||
             status.st_nlink == 0);
    _write(head(::getpid()));
    _size = head(0).size();
    journal_folder::sync(_folder);
    for (std::size_t old = 0; old + MostJournals <= numbers.size(); ++old)
        ::unlink(journal_folder::name(_folder, numbers[old]).c_str());
}

void HeaderJournal::_write(const std::string& text) const
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::pwrite(_file, text.data() + done, text.size() - done,
                                       static_cast<off_t>(_size + done));
        if (count < 0 && errno != EINTR)
            throw failure(errno);
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    if (::fdatasync(_file) != 0)
        throw failure(errno);
}

void HeaderJournal::add(const JournalEntry& entry)
{
    if (_size == 0)
        _begin();
    // What is there after a failure is no whole entry, and the next one is written over it.
    const std::string text = entry.text();
    _write(text);
    _lastEntry = _size;
    _size += text.size();
    ++_entries;
}

void HeaderJournal::takeBack()
{
    // An entry that stays is no lie: its digests tell that the file was not replaced.
    if (::ftruncate(_file, static_cast<off_t>(_lastEntry)) != 0)
        return;
    _size = _lastEntry;
    --_entries;
}
