// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the HDF5 room: opens NeXus masters, their data files and other HDF5 image files.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

#include <memory>
#include <string>

namespace morvend::imglib {

/// True if the HDF5 signature stands at offset 0 or after a user block. Reads it without the HDF5
/// library.
/// @throws MRuntimeException when the file is compressed as a whole
bool isHdf5(const ByteSource& source);

/// Opens an HDF5 file with the whole series that it belongs to. Frames are numbered from 1.
///
/// @returns null when the file has no HDF5 signature
/// @throws MException if the file is damaged, holds no images, no frame yet, or is compressed as
/// a whole. Once opened, a block that is missing or damaged fails only its own frames.
std::unique_ptr<ImageFile> openHdf5(std::shared_ptr<const ByteSource> source);

/// Opens one data set of a file, or the images of one group, by its path; an empty path as above.
/// @throws MException also if nothing has that path, or it can't be shown as images
std::unique_ptr<ImageFile> openHdf5At(std::shared_ptr<const ByteSource> source,
                                      const std::string& dataset);

}  // namespace morvend::imglib
