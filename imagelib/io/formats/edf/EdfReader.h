// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the EDF room.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

namespace morvend::imglib {

/// Opens an EDF file: blocks of a text header and pixels, one or more frames, found as they are
/// asked for. docs/formats/edf.md tells what is read.
/// @returns null when the file is no EDF
/// @throws MException naming file and reason when its first block is damaged
std::unique_ptr<ImageFile> openEdf(std::shared_ptr<const ByteSource> source);
/// As of ByteSource::ImageNeed.
std::uint64_t edfNeed(std::string_view head);

}  // namespace morvend::imglib
