// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where to begin in a folder of images.
#pragma once

#include <string>

namespace morvend::imglib {

/// The file to open for a path: for a folder, the first by name of its HDF5 masters and NeXus
/// entries, else of its image files, else of its other HDF5 files, where runs of digits count as
/// numbers. Any other path is returned as it is. Reads the names in the folder once, no file.
/// @throws MNoFileAccessException when a folder can't be listed or holds no image file
std::string fileToOpen(const std::string& path);

}  // namespace morvend::imglib
