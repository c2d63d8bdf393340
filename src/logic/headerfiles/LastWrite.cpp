// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/headerfiles/LastWrite.h"

#include "logic/headerfiles/HeaderFileError.h"
#include "logic/headerfiles/HeaderJournal.h"
#include "logic/headerfiles/JournalFolder.h"
#include "logic/headerfiles/ReplacedFile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string readAll(int file, const std::string& path)
{
    std::string content;
    char piece[65536];
    ssize_t count = 0;
    while ((count = ::read(file, piece, sizeof piece)) != 0) {
        if (count < 0 && errno != EINTR)
            throw HeaderFileError("The journal of the last batch can't be read: " +
                                  std::generic_category().message(errno) + ": " + path);
        content.append(piece, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return content;
}

}  // namespace

LastWrite::LastWrite(std::string path, int file)
    : _path(std::move(path))
    , _file(file)
{}

LastWrite::~LastWrite() { ::close(_file); }

void LastWrite::_read()
{
    const std::string head = HeaderJournal::head(0);
    const std::size_t digits = head.find("0000000000");
    const std::string content = readAll(_file, _path);
    if (content.size() < head.size())
        return;  // the batch was killed before its first file
    if (content.substr(0, digits) != head.substr(0, digits))
        throw HeaderFileError("The journal of the last batch is damaged: " + _path);
    std::from_chars(content.data() + digits, content.data() + head.size(), _process);
    struct stat status = {};
    if (::fstat(_file, &status) == 0)
        _time = status.st_mtim.tv_sec;
    std::string_view rest = std::string_view(content).substr(head.size());
    while (auto entry = JournalEntry::take(rest))
        _entries.push_back(std::move(*entry));
}

std::unique_ptr<LastWrite> LastWrite::find(const std::string& folder)
{
    std::vector<long> numbers = journal_folder::numbers(folder);
    for (; !numbers.empty(); numbers.pop_back()) {
        const std::string path = journal_folder::name(folder, numbers.back());
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        if (file < 0)
            continue;
        std::unique_ptr<LastWrite> last(new LastWrite(path, file));
        if (::flock(file, LOCK_EX | LOCK_NB) != 0)
            throw HeaderFileError("The last batch is still being written or undone");
        last->_read();
        if (!last->_entries.empty())
            return last;
        ::unlink(path.c_str());
    }
    return nullptr;
}

void LastWrite::removeLeftovers(const std::string& folder)
{
    try {
        if (const auto last = find(folder))
            last->_removeLeftovers();
    } catch (const HeaderFileError&) {
        return;  // it is at work
    }
}

void LastWrite::_removeLeftovers()
{
    if (_process == 0)
        return;
    for (const JournalEntry& entry : _entries)
        ::unlink(ReplacedFile::temporaryName(entry.path, _process).c_str());
    HeaderJournal::markProcess(_file, 0);
}

void LastWrite::begin()
{
    _removeLeftovers();
    HeaderJournal::markProcess(_file, ::getpid());
}

void LastWrite::end(bool done)
{
    if (done)
        ::unlink(_path.c_str());
    else
        HeaderJournal::markProcess(_file, 0);
}
