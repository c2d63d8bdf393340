// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the EDF room.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

namespace morvend::imglib {

/// Opens an EDF file: blocks of a text header and pixels, one or more frames, found when they are
/// requested. docs/formats/edf.md says what is read.
/// @returns null if the file isn't an EDF
/// @throws MException naming file and reason when its first block is damaged
std::unique_ptr<ImageFile> openEdf(std::shared_ptr<const ByteSource> source);
/// As for ByteSource::ImageNeed.
std::uint64_t edfNeed(std::string_view head);

}  // namespace morvend::imglib
