// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The kinds of external files.
#include "imagelib/io/formats/hdf5/library/ExternalFiles.h"

#include "imagelib/image/MException.h"

#include <filesystem>
#include <system_error>

namespace morvend::imglib::hdf5 {

void checkExternalFiles(hid_t creation, const std::string& path, const std::string& file)
{
    constexpr int Most = 1000;
    const int count = H5Pget_external_count(creation);
    if (count > Most)
        throw MRuntimeException("HDF5: the pixels of " + path + " lie in " + std::to_string(count) +
                                " files, too many: " + file);
    for (int i = 0; i < count; ++i) {
        char name[4096] = {};
        off_t offset = 0;
        hsize_t size = 0;
        if (H5Pget_external(creation, static_cast<unsigned>(i), sizeof name - 1, name, &offset,
                            &size) < 0)
            fail("the external files of " + path + " can't be read", file);
        std::error_code none;
        if (std::filesystem::exists(name, none) && !std::filesystem::is_regular_file(name, none))
            throw MNoFileAccessException("HDF5: the pixels of " + path + " lie in " + name +
                                         ", which is no regular file: " + file);
    }
}

}  // namespace morvend::imglib::hdf5
