// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels of a TIFF page.
#pragma once

#include "imagelib/image/MImage.h"

namespace morvend::imglib::tiff {

class TiffHandle;
struct TiffLayout;

/// Reads the pixels of the page that the handle has selected, uncompressed strips by one read
/// straight into the image.
///
/// 32-bit integers whose sign the file leaves open become signed when the only values from 2^31 on
/// are 4294967295 and 4294967294: those are the flags -1 and -2 of detectors , not counts.
/// @param bigEndian byte order of the file
/// @throws MRuntimeException naming the strip or tile that is missing, cut or damaged
MImage readPixels(TiffHandle& handle, const TiffLayout& layout, bool bigEndian);

}  // namespace morvend::imglib::tiff
