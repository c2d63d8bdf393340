// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From a format's number to its writer.
#include "imagelib/io/MImageWriter.h"

#include "imagelib/io/formats/cbf/CbfWriter.h"
#include "imagelib/io/formats/tiff/TiffWriter.h"

namespace morvend::imglib {

void MImageWriter::write(const MImage& image, const std::string& path, Format format)
{
    if (image.empty())
        throw MBadParameterException("There is no image to write: " + path);
    switch (format) {
    case CBF:
        return writeCbf(image, path);
    case TIFF:
        return writeTiff(image, path);
    }
    throw MBadParameterException("Images cannot be written in the format number " +
                                 std::to_string(int(format)) + ": " + path);
}

}  // namespace morvend::imglib
