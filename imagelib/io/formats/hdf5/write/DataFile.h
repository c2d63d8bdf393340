// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One data file of a NeXus series: the frames of one block, each a chunk.
#pragma once

#include "imagelib/io/formats/hdf5/write/FrameLayout.h"
#include "imagelib/io/formats/hdf5/write/PendingFile.h"

#include <cstddef>
#include <span>

namespace morvend::imglib::hdf5 {

/// The HDF5 type of a pixel type; one of the library's own, not to be closed.
/// @throws MNotImplementedException for a pair that isn't a pixel type
hid_t fileType(datatypes::Type type, std::size_t bits);

/// Writes /entry/data/data. Errors: MExceptions naming the file. Thread: one at a time.
class DataFile {
public:
    /// @param firstNumber  number of the block's first image in the series
    /// @param replaces     a file of that name
    DataFile(const std::string& path, const FrameLayout& layout, Compression compression,
             std::size_t firstNumber, bool replaces);

    std::size_t frames() const { return _frames; }
    /// Appends a frame, which has layout.bytes() bytes.
    void append(std::span<const std::byte> pixels);
    /// Appends a frame that has passed the filter, or is to be stored without.
    void appendChunk(std::span<const std::byte> bytes, bool filtered);
    /// Makes all frames so far readable under the file's name.
    void publish();

private:
    PendingFile _file;
    FrameLayout _layout;
    Compression _compression;
    Dataset _data;
    std::size_t _firstNumber;
    std::size_t _frames = 0;
};

}  // namespace morvend::imglib::hdf5
