// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Asks one reader after the other.
#include "imagelib/io/FormatRegistry.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/cbf/CbfReader.h"
#include "imagelib/io/formats/edf/EdfReader.h"
#include "imagelib/io/formats/hdf5/NexusReader.h"
#include "imagelib/io/formats/tiff/TiffReader.h"

namespace morvend::imglib {

std::span<const FormatRegistry::Format> FormatRegistry::formats()
{
    // EDF comes last: its mark, an opening brace, also begins other files.
    static constexpr Format All[] = {
        {"CBF", openCbf}, {"TIFF", openTiff}, {"HDF5", openHdf5}, {"EDF", openEdf}};
    return All;
}

std::unique_ptr<ImageFile> FormatRegistry::open(const std::string& path)
{
    const std::shared_ptr<const ByteSource> source = ByteSource::open(path);
    if (source->size() == 0)
        throw MUnknownFormatException("The file is empty: " + path);
    std::string names;
    for (const Format& format : formats()) {
        if (std::unique_ptr<ImageFile> file = format.open(source))
            return file;
        names += (names.empty() ? "" : ", ") + std::string(format.name);
    }
    throw MUnknownFormatException("Unknown format, none of " + names + ": " + path);
}

}  // namespace morvend::imglib
