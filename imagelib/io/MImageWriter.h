// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door for writing single images.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>

namespace morvend::imglib {

/// Writes one image with its header to a file. Thread: any.
class MImageWriter {
public:
    enum Format { CBF = 1, TIFF = 2 };

    /// The file appears under its name when it is complete.
    /// @throws MBadParameterException for another format or an empty image, MException when the
    /// image can't be held by the format or the file can't be written
    static void write(const MImage& image, const std::string& path, Format format);
};

}  // namespace morvend::imglib
