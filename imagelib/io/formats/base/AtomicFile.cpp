// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Temporary name, complete writes, rename.
#include "imagelib/io/formats/base/AtomicFile.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/Cancellation.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morvend::imglib {

namespace {

std::string systemError(int number) { return std::generic_category().message(number); }

}  // namespace

std::string temporaryName(const std::string& path)
{
    static std::atomic<unsigned> last{0};
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    return folder + ".tarvik-" + std::to_string(::getpid()) + "-" + std::to_string(++last) + ".tmp";
}

AtomicFile::AtomicFile(const std::string& path)
    : _path(path)
{
    do {
        _temporary = temporaryName(path);
        _file = ::open(_temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (_file < 0 && errno == EEXIST);
    if (_file < 0)
        throw MNoFileAccessException("Cannot write file: " + systemError(errno) + ": " + path);
    struct stat replaced = {};
    if (::stat(path.c_str(), &replaced) == 0 && S_ISREG(replaced.st_mode))
        ::fchmod(_file, replaced.st_mode & 0777);
}

AtomicFile::~AtomicFile()
{
    if (_file >= 0)
        ::close(_file);
    if (!_temporary.empty())
        ::unlink(_temporary.c_str());
}

void AtomicFile::write(const void* bytes, std::size_t count)
{
    constexpr std::size_t Most = std::size_t(1) << 24;
    const char* from = static_cast<const char*>(bytes);
    while (count > 0) {
        checkCancelled();
        const ssize_t done = ::write(_file, from, std::min(count, Most));
        if (done < 0 && errno != EINTR)
            _fail(errno);
        if (done > 0) {
            from += done;
            count -= static_cast<std::size_t>(done);
        }
    }
}

void AtomicFile::commit()
{
    checkCancelled();
    const int file = std::exchange(_file, -1);
    if (::close(file) != 0)  // network file systems report a full disk here
        _fail(errno);
    if (std::rename(_temporary.c_str(), _path.c_str()) != 0)
        _fail(errno);
    _temporary.clear();
}

void AtomicFile::_fail(int error) const
{
    throw MRuntimeException("Cannot write file: " + systemError(error) + ": " + _path);
}

}  // namespace morvend::imglib
