// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The readers of all formats and the order in which they are asked.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

#include <memory>
#include <span>
#include <string>

namespace morvend::imglib {

/// Opens image files of any format. Thread: any.
class FormatRegistry {
public:
    struct Format {
        const char* name;
        ImageFileOpener open;
    };

    /// The formats in the order in which they are asked: those with the surest marks first.
    static std::span<const Format> formats();

    /// Opens a file by its content; the name plays no part.
    /// @throws MNoFileAccessException when it can't be opened, MUnknownFormatException when no
    /// reader knows it or it is empty, or what the format's reader says of a damaged file
    static std::unique_ptr<ImageFile> open(const std::string& path);
};

}  // namespace morvend::imglib
