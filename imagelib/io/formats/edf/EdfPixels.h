// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels of an EDF frame.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/base/ByteSource.h"

namespace morvend::imglib::edf {

struct EdfBlock;
struct EdfLayout;

/// Reads a frame of a block, uncompressed pixels by one read straight into the image.
/// @throws MException naming the frame when pixels are missing or damaged, or when the file that
/// holds them can't be opened
MImage readPixels(const ByteSource& source, const EdfBlock& block, const EdfLayout& layout,
                  std::size_t frame);

}  // namespace morvend::imglib::edf
