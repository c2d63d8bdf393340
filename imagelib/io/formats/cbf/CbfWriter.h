// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writing of one image as a mini-CBF file.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>

namespace morvend::imglib {

/// Writes an image with its header lines: integers byte-offset packed in their own type (bool and
/// char as 8-bit integers), floating values plain. The rawHeader's lines are kept as
/// mergedHeaderLines() says. The file appears under its name only when it is complete.
/// @throws MBadParameterException for an empty image, MNoFileAccessException or MRuntimeException
/// with the file and the system's reason when it can't be written
void writeCbf(const MImage& image, const std::string& path);

}  // namespace morvend::imglib
