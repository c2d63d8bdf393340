// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Creates under a temporary name, renames while the file is open.
#include "imagelib/io/formats/hdf5/write/PendingFile.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/AtomicFile.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morvend::imglib::hdf5 {

namespace {

/// As rename(), but fails with EEXIST where the new name is taken.
int renameToFree(const char* from, const char* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return -1;
    // File systems over a network don't know it.
    if (::link(from, to) == 0)
        return ::unlink(from);
    if (errno == EEXIST)
        return -1;
    if (::access(to, F_OK) == 0) {
        errno = EEXIST;
        return -1;
    }
    return std::rename(from, to);
}

/// Whether this process may not write so far.
bool tooLong(off_t end)
{
    rlimit most = {};
    return ::getrlimit(RLIMIT_FSIZE, &most) == 0 && most.rlim_cur != RLIM_INFINITY &&
           static_cast<rlim_t>(end) > most.rlim_cur;
}

}  // namespace

PendingFile::PendingFile(const std::string& path, bool replaces)
    : _path(path)
    , _temporary(temporaryName(path))
    , _replaces(replaces)
{
    silenceErrors();
    const Properties access = unlockedAccess();
    _file = File(H5Fcreate(_temporary.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.id()));
    if (!_file)
        throw MNoFileAccessException("HDF5: cannot create file (" + takeErrorText() + "): " + path);
}

PendingFile::~PendingFile()
{
    _file = File();
    if (!_temporary.empty()) {
        ::unlink(_temporary.c_str());
        return;
    }
    struct stat status = {};
    if (!_reserved || ::stat(_path.c_str(), &status) != 0)
        return;
    // Gives back what was reserved and not needed; it stays in use if that fails, which harms
    // nobody.
    [[maybe_unused]] const int result = ::truncate(_path.c_str(), status.st_size);
}

void PendingFile::reserve(std::size_t bytes)
{
    constexpr off_t Index = 1 << 16;  // that grows with the data
    void* handle = nullptr;
    hsize_t size = 0;
    if (H5Fget_vfd_handle(id(), H5P_DEFAULT, &handle) < 0 || H5Fget_filesize(id(), &size) < 0)
        return;
    const int file = *static_cast<int*>(handle);
    const off_t end = static_cast<off_t>(size + bytes) + Index;
    // The size stays: a longer file would look complete to whoever finds it cut.
    int failure = tooLong(end) ? EFBIG : 0;
    if (failure == 0 && ::fallocate(file, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(size),
                                    end - static_cast<off_t>(size)) != 0)
        failure = errno;
    _reserved = _reserved || failure == 0;
    if (failure == ENOSPC || failure == EDQUOT || failure == EFBIG)
        throw MRuntimeException("HDF5: cannot write file (" +
                                std::generic_category().message(failure) + "): " + _path);
}

void PendingFile::flush() { check(H5Fflush(id(), H5F_SCOPE_LOCAL), "cannot write file", _path); }

void PendingFile::publish()
{
    flush();
    if (_temporary.empty())
        return;
    const auto rename = _replaces ? std::rename : renameToFree;
    if (rename(_temporary.c_str(), _path.c_str()) != 0)
        throw MRuntimeException("HDF5: cannot rename to its final name (" +
                                std::generic_category().message(errno) + "): " + _path);
    _temporary.clear();
}

}  // namespace morvend::imglib::hdf5
