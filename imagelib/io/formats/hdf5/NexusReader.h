// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the HDF5 room: opens NeXus masters, their data files and other HDF5 image files.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

namespace morvend::imglib {

/// Has the file an HDF5 signature, at its begin or behind a user's block? Reads it without the HDF5
/// library.
/// @throws MRuntimeException when the file is compressed as a whole
bool isHdf5(const ByteSource& source);

/// Opens an HDF5 file with the whole series that it belongs to. Frames are numbered from 1.
///
/// @returns null when the file has no HDF5 signature
/// @throws MException when the file is damaged, holds no images, no frame yet, or is compressed as
/// a whole. Once opened, a block that is missing or damaged fails its own frames alone.
std::unique_ptr<ImageFile> openHdf5(std::shared_ptr<const ByteSource> source);

}  // namespace morvend::imglib
