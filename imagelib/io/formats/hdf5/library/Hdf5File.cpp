// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Opening, also of a file that is being written.
#include "imagelib/io/formats/hdf5/library/Hdf5File.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/library/SourceDriver.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morvend::imglib::hdf5 {

namespace {

/// Has a writer opened the file for readers beside it? Its mark stands in the superblock, behind
/// the block of the user if there is one. Without knowing it the library would refuse what was
/// appended since as lying beyond the end.
bool writtenBesideReaders(const std::string& path, hid_t file)
{
    hsize_t userBlock = 0;
    const Handle<H5Pclose> creation(H5Fget_create_plist(file));
    if (!creation || H5Pget_userblock(creation.id(), &userBlock) < 0)
        return false;
    unsigned char start[12] = {};
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    const ssize_t got = ::pread(descriptor, start, sizeof start, static_cast<off_t>(userBlock));
    ::close(descriptor);
    constexpr int VersionAt = 8;
    constexpr int MarksAt = 11;
    constexpr int WriterBesideReaders = 4;
    return got == sizeof start && start[VersionAt] >= 3 && (start[MarksAt] & WriterBesideReaders);
}

}  // namespace

FileState FileState::of(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
            static_cast<std::uint64_t>(status.st_size),
            std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec};
}

Hdf5File::Hdf5File(const std::string& path)
    : _path(path)
    , _state(FileState::of(path))
{
    quiet();
    registerFilters();
    if (!_state.exists())
        throw MNoFileAccessException("HDF5: there is no such file: " + path);
    const Properties access = sourceAccess();
    _file = File(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.id()));
    if (_file && !writtenBesideReaders(path, _file.id()))
        return;
    const std::string reason = takeErrorText();
    File besideWriter(H5Fopen(path.c_str(), H5F_ACC_RDONLY | H5F_ACC_SWMR_READ, access.id()));
    if (besideWriter)
        _file = std::move(besideWriter);
    takeErrorText();
    if (!_file)
        throw MRuntimeException("HDF5: the file can't be opened (" + reason + "): " + path);
}

}  // namespace morvend::imglib::hdf5
