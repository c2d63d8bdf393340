// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The calls to the system, in the order that keeps the file whole whenever one of them is the last.
#include "logic/headerfiles/ReplacedFile.h"

#include "logic/headerfiles/HeaderFileError.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

std::string reasonOf(int error) { return std::generic_category().message(error); }

// strerror_r() returns the error number in one version of the library and the text in another.
[[maybe_unused]] int numberOf(int result) { return result; }
[[maybe_unused]] int numberOf(const char*) { return 0; }

/// Keeps others from opening a file for writing while it lives, where the system can do so: their
/// open() waits for the end. The file must not be open for writing when it begins.
class ReadLease {
public:
    explicit ReadLease(int file)
        : _file(file)
    {
        // The system announces a waiting writer by a signal, which by default would end the
        // process; this one is ignored.
        ::fcntl(file, F_SETSIG, SIGURG);
        _held = ::fcntl(file, F_SETLEASE, F_RDLCK) == 0;
        _refused = !_held && errno == EAGAIN;
    }
    ~ReadLease()
    {
        if (_held)
            ::fcntl(_file, F_SETLEASE, F_UNLCK);
    }
    ReadLease(const ReadLease&) = delete;
    ReadLease& operator=(const ReadLease&) = delete;

    /// Has someone the file open for writing?
    bool refused() const { return _refused; }

private:
    int _file;
    bool _held;
    bool _refused;
};

std::string linkTarget(const std::string& path)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        return path;
    const std::unique_ptr<char, void (*)(void*)> target(::realpath(path.c_str(), nullptr), ::free);
    return target ? target.get() : path;
}

/// @returns an error number, or 0
int copyAttribute(int from, int to, const char* name)
{
    const ssize_t size = ::fgetxattr(from, name, nullptr, 0);
    std::vector<char> value(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    if (size < 0 || ::fgetxattr(from, name, value.data(), value.size()) != size)
        return errno == ENODATA ? 0 : errno;
    return ::fsetxattr(to, name, value.data(), value.size(), 0) == 0 ? 0 : errno;
}

/// @returns an error number, or 0
int copyAttributes(int from, int to)
{
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size < 0)
        return errno == ENOTSUP ? 0 : errno;
    std::vector<char> names(static_cast<std::size_t>(size));
    if (::flistxattr(from, names.data(), names.size()) != size)
        return errno;
    for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
        // The labels of the system's security are its own to give.
        if (std::string_view(&names[at]).starts_with("security."))
            continue;
        if (const int error = copyAttribute(from, to, &names[at]))
            return error;
    }
    return 0;
}

bool sameContent(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// Makes a rename in the folder of a file outlive a loss of power, where the system can do so.
void syncFolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return;
    ::fsync(file);
    ::close(file);
}

}  // namespace

/// The new file while it has no name of its own. It goes unless it is kept.
class ReplacedFile::Temporary {
public:
    explicit Temporary(std::string name)
        : _name(std::move(name))
    {
        _open();
        if (_file < 0 && errno == EEXIST && ::unlink(_name.c_str()) == 0)
            _open();  // it was left by a process of the same number
        if (_file < 0)
            throw HeaderFileError("Can't open " + _name + " for writing: " + reasonOf(errno),
                                  "Error: Can't open " + _name + " for writing\n");
    }
    ~Temporary()
    {
        close();
        if (!_kept)
            ::unlink(_name.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    const std::string& name() const { return _name; }
    int file() const { return _file; }
    void keep() { _kept = true; }
    /// @returns whether all that was written has arrived; network file systems say so here
    bool close()
    {
        const int file = std::exchange(_file, -1);
        return file < 0 || ::close(file) == 0;
    }

private:
    void _open()
    {
        _file = ::open(_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    }

    std::string _name;
    int _file = -1;
    bool _kept = false;
};

ReplacedFile::ReplacedFile(std::string path, std::size_t most)
    : _given(std::move(path))
    , _path(linkTarget(_given))
{
    const auto fail = [&](const std::string& reason) -> HeaderFileError {
        if (_file >= 0)
            ::close(_file);
        return {"Can't open " + _given + " for reading: " + reason,
                "Error: Can't open " + _given + " for reading\n"};
    };
    // A pipe would wait for a writer.
    _file = ::open(_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (_file < 0 || ::fstat(_file, &_status) != 0)
        throw fail(reasonOf(errno));
    if (!S_ISREG(_status.st_mode))
        throw fail("it is no regular file");
    _content.resize(std::min(size(), most));
    std::size_t done = 0;
    while (done < _content.size()) {
        const ssize_t count = ::read(_file, _content.data() + done, _content.size() - done);
        if (count == 0 || (count < 0 && errno != EINTR))
            throw fail(count == 0 ? "it became shorter" : reasonOf(errno));
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

ReplacedFile::~ReplacedFile() { ::close(_file); }

std::string ReplacedFile::temporaryName(const std::string& path, long process)
{
    return path + '.' + std::to_string(process) + ".tmp";
}

void ReplacedFile::replace(const std::string& content)
{
    Temporary temporary(temporaryName(_path, ::getpid()));
    _write(temporary, content);
    const ReadLease lease(_file);
    if (lease.refused())
        throw HeaderFileError("Another program is writing this file: " + _given);
    _checkUnchanged();
    temporary.keep();
    if (std::rename(temporary.name().c_str(), _path.c_str()) != 0) {
        char text[1024] = {};
        const int error = errno;
        const int number = numberOf(strerror_r(error, text, sizeof text));
        const std::string what = "Renaming " + temporary.name() + " to " + _path;
        throw HeaderFileError(what + ": " + reasonOf(error),
                              "Error: " + what + "\n       " + std::to_string(number) + '\n');
    }
    syncFolderOf(_path);
}

void ReplacedFile::_write(Temporary& temporary, const std::string& content) const
{
    const int file = temporary.file();
    // Before the content, so that nobody sees more of it than of the file.
    const auto keep = [&](const char* what, int error) {
        if (error != 0)
            throw HeaderFileError(std::string(what) + " can't be kept: " + reasonOf(error) + ": " +
                                  _given);
    };
    keep("Its owner", ::fchown(file, _status.st_uid, _status.st_gid) == 0 ? 0 : errno);
    keep("Its extended attributes", copyAttributes(_file, file));
    keep("Its permissions", ::fchmod(file, _status.st_mode & 07777) == 0 ? 0 : errno);

    const auto fail = [&] {
        throw HeaderFileError("Can't write " + temporary.name() + ": " + reasonOf(errno));
    };
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = ::write(file, content.data() + done, content.size() - done);
        if (count < 0 && errno != EINTR)
            fail();
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    if (::fsync(file) != 0 || !temporary.close())
        fail();
}

void ReplacedFile::_checkUnchanged() const
{
    struct stat now = {};
    if (::stat(_path.c_str(), &now) != 0)
        throw HeaderFileError("The file vanished: " + reasonOf(errno) + ": " + _given);
    if (!sameContent(now, _status))
        throw HeaderFileError("Another program changed this file just now: " + _given);
}
