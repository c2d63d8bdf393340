// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Opening, also of a file that is being written.
#include "imagelib/io/formats/hdf5/Hdf5File.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/SourceDriver.h"

#include <sys/stat.h>

namespace morvend::imglib::hdf5 {

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
    if (_file)
        return;
    const std::string reason = takeErrorText();
    // A file that its writer has opened for readers beside it is marked, and opens only like this.
    _file = File(H5Fopen(path.c_str(), H5F_ACC_RDONLY | H5F_ACC_SWMR_READ, access.id()));
    if (!_file) {
        takeErrorText();
        throw MRuntimeException("HDF5: the file can't be opened (" + reason + "): " + path);
    }
}

}  // namespace morvend::imglib::hdf5
