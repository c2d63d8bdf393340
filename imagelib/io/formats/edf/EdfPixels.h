// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels of an EDF frame.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/base/ByteSource.h"

#include <cstddef>
#include <cstdint>

namespace morvend::imglib::edf {

struct EdfLayout;

/// One header with its binary block, of one or more frames.
struct EdfBlock {
    std::uint64_t header = 0;
    std::size_t headerBytes = 0;
    /// The binary block in this file; empty when it is in another one.
    std::uint64_t data = 0;
    std::uint64_t dataBytes = 0;
    std::size_t firstFrame = 0;
    std::size_t frames = 1;
};

/// Reads a frame of a block, uncompressed pixels by one read straight into the image.
/// @throws MException naming the frame when pixels are missing or damaged, or when the file that
/// holds them can't be opened
MImage readPixels(const ByteSource& source, const EdfBlock& block, const EdfLayout& layout,
                  std::size_t frame);

}  // namespace morvend::imglib::edf
