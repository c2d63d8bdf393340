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

#include <unistd.h>

namespace morvend::imglib::hdf5 {

PendingFile::PendingFile(const std::string& path)
    : _path(path)
    , _temporary(temporaryName(path))
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
    if (!_temporary.empty())
        ::unlink(_temporary.c_str());
}

void PendingFile::flush() { check(H5Fflush(id(), H5F_SCOPE_LOCAL), "cannot write file", _path); }

void PendingFile::publish()
{
    flush();
    if (_temporary.empty())
        return;
    if (std::rename(_temporary.c_str(), _path.c_str()) != 0)
        throw MRuntimeException("HDF5: cannot rename to its final name (" +
                                std::generic_category().message(errno) + "): " + _path);
    _temporary.clear();
}

}  // namespace morvend::imglib::hdf5
