// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Crystallographic Binary Files: the door of the format.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

namespace morvend::imglib {

struct CbfOptions {
    /// Compare the pixel data with the MD5 sum in the file; costs more than decoding them.
    bool checkMd5 = false;
};

/// Opens a mini-CBF or a full imgCIF file; each binary section is a frame (several when it has a
/// third dimension). The header lines, or in their place the categories of full imgCIF, fill the
/// header; rawHeader is the header text, or all CIF text where there is none.
/// @returns null for a file that does not begin with "###CBF"
/// @throws MRuntimeException when it holds no binary section or one that can't be an image
std::unique_ptr<ImageFile> openCbf(std::shared_ptr<const ByteSource> source);
/// As for ByteSource::ImageNeed.
std::uint64_t cbfNeed(std::string_view head);
std::unique_ptr<ImageFile> openCbf(std::shared_ptr<const ByteSource> source,
                                   const CbfOptions& options);

}  // namespace morvend::imglib
