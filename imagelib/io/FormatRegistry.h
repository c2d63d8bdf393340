// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The readers of all formats and the order in which they are asked.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"
#include "imagelib/io/formats/base/ImagePath.h"

#include <memory>
#include <stop_token>
#include <string>

namespace morvend::imglib {

/// Opens image files of any format. Thread: any.
class FormatRegistry {
public:
    /// Chooses where this process reads HDF5 files: in reader processes of their own, so that a
    /// crash of the HDF5 library fails one request, or in place, as at the start. Without the
    /// program tarvik-reader beside this one they are still read in place, and a line on
    /// standard error says so. Files that are open stay where they are.
    static void readHdf5OutOfProcess(bool outOfProcess);

    /// Opens a file by its content; the name doesn't matter. Of an HDF5 file one data set may be
    /// meant; other files have none.
    /// @param stop  ends, on request, what another process does for the file: the opening and
    /// every later request fail at once with an MTerminateException
    /// @throws MNoFileAccessException when it can't be opened, MUnknownFormatException when no
    /// reader knows it or it is empty, or what the format's reader throws for a damaged file
    static std::unique_ptr<ImageFile> open(const ImagePath& image,
                                           const std::stop_token& stop = {});
};

}  // namespace morvend::imglib
