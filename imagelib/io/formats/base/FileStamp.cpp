// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Stamps from the file system.
#include "imagelib/io/formats/base/FileStamp.h"

#include <sys/stat.h>

namespace morvend::imglib {

FileStamp::FileStamp(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return;
    _exists = true;
    _device = status.st_dev;
    _node = status.st_ino;
    _size = static_cast<std::uint64_t>(status.st_size);
    _seconds = status.st_mtim.tv_sec;
    _nanoseconds = status.st_mtim.tv_nsec;
}

}  // namespace morvend::imglib
