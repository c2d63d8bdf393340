// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Data sets whose bytes are in files outside their HDF5 file.
#pragma once

#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <string>

namespace morvend::imglib::hdf5 {

/// Checks that the library may read all files that hold the bytes of a data set: one that
/// is a pipe would keep it waiting. Files that don't exist are left to the library.
/// @param creation  the properties that the data set was created with
/// @throws MNoFileAccessException naming the file that is no regular one
void checkExternalFiles(hid_t creation, const std::string& path, const std::string& file);

}  // namespace morvend::imglib::hdf5
