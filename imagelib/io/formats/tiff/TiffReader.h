// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the TIFF room for reading.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

namespace morvend::imglib {

/// Opens a TIFF or BigTIFF file of either byte order; each page is a frame. Pixels keep the order
/// and the counts of the file, whatever its orientation and photometric tags say.
/// docs/formats/tiff.md says which types and compressions are read.
/// @returns null if the file isn't a TIFF
/// @throws MException naming file and reason when its first page can't be an image
std::unique_ptr<ImageFile> openTiff(std::shared_ptr<const ByteSource> source);
/// As for ByteSource::ImageNeed; the head does not show where the size is.
std::uint64_t tiffNeed(std::string_view head);

}  // namespace morvend::imglib
