// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the TIFF room for writing.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>

namespace morvend::imglib {

/// Writes an image and its header as an uncompressed TIFF file of one strip, as a BigTIFF when it
/// is too large for a plain one. All pixel types are kept; bool and char become 8-bit integers.
/// The file appears under its name when it is complete.
/// @throws MBadParameterException for an empty image, MNoFileAccessException when the folder can't
/// be written, MRuntimeException when writing fails
void writeTiff(const MImage& image, const std::string& path);

}  // namespace morvend::imglib
